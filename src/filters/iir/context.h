// The records of IIR filters: what family and form they have, and the engine of that form.
#pragma once

#include "filters/iir/cascade.h"
#include "filters/iir/family.h"
#include "filters/iir/transposed.h"
#include "frame/modes.h"
#include "frame/record.h"
#include "kels/iir.h"

#include <utility>

/// The first word of every context; what follows belongs to the form that it names.
struct KelIirContext {
    Kel32u id = 0;
};

namespace kels {

/// A filter of one form.
template <class Engine>
struct IirFilter : KelIirContext {
    Engine form;
};

/// Makes a filter of `size`: its order, or the number of its sections. `take(form)` gives it its taps.
template <class Form, class Take>
KelStatus make_filter(KelIirContext** result, const void* taps, Kel32u id, int size, const typename Form::Tap* state,
                      const Take& take) {
    if (!result || !taps) return kelStatusNullPtr;
    if (size < Form::least_size) return kelStatusBadIirOrder;
    const ModesOfCreation modes;
    auto context = make_record<IirFilter<Form>>(id);
    if (!context || !context->form.allocate(size)) return kelStatusNoMemory;
    if (const KelStatus status = take(context->form); status != kelStatusOk) return status;
    context->form.prepare();
    context->form.set_state(state);
    *result = context.release();
    return kelStatusOk;
}

/// Runs f on a filter of this family as what it is; a null or foreign one gives its status.
template <class Family, class Context, class F>
KelStatus with_either_form(Context* context, bool any_array_null, F&& f) {
    using Taps = typename Family::Taps;
    if (context && context->id == Family::cascade_id)
        return with_record<IirFilter<Cascade<Taps>>>(context, Family::cascade_id, any_array_null, f);
    return with_record<IirFilter<TransposedForm<Taps>>>(context, Family::transposed_id, any_array_null, f);
}

} // namespace kels
