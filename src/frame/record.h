// What lives longer than a call: contexts and plans. A record's first field says what it is: `id` in a context,
// `planId` in a plan. Functions test it before they read anything else, and a released record has none.
//
// A record is made out of owners (frame/memory.h), step by step; a step that fails drops the record, and with it all
// that the steps before made. Only a record that is whole is released to the caller:
//
//     auto record = make_record<Context>(family_id);
//     if (!record) return kelStatusNoMemory;
//     record->taps = make_owned<Kel32f>(len);
//     if (!record->taps) return kelStatusNoMemory;
//     *result = record.release();
#pragma once

#include "frame/memory.h"
#include "kels/status.h"

#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace kels {

/// The field that says what a record is.
template <class Record>
auto& id_of(Record& record) {
    if constexpr (requires { record.planId; })
        return record.planId;
    else
        return record.id;
}

/// Ends a record, marked as none first.
struct DeleteRecord {
    template <class Record>
    void operator()(Record* record) const {
        id_of(*record) = {};
        record->~Record();
        kelsFree(record);
    }
};

template <class Record>
using OwnedRecord = std::unique_ptr<Record, DeleteRecord>;

/// A record that holds nothing yet; null for want of memory.
template <class Record, class Id>
OwnedRecord<Record> make_record(Id id) {
    void* memory = allocate<Record>(1);
    if (!memory) return nullptr;
    OwnedRecord<Record> record(new (memory) Record);
    id_of(*record) = id;
    return record;
}

/// The first two checks of a call: the record and the pointers that are tested with it, then what the record is.
template <class Record, class Id>
KelStatus check_record(const Record* record, Id id, bool any_null = false) {
    if (!record || any_null) return kelStatusNullPtr;
    return id_of(*record) == id ? kelStatusOk : kelStatusContextMismatch;
}

/// Runs f on a record as the `Own` that its id says it is; a null or foreign one gives its status.
template <class Own, class Record, class Id, class F>
KelStatus with_record(Record* record, Id id, bool any_null, F&& f) {
    using Seen = std::conditional_t<std::is_const_v<Record>, const Own, Own>;
    if (const KelStatus status = check_record(record, id, any_null); status != kelStatusOk) return status;
    return std::forward<F>(f)(static_cast<Seen&>(*record));
}

template <class Own, class Record, class Id>
KelStatus free_record(Record* record, Id id) {
    return with_record<Own>(record, id, false, [](Own& own) {
        DeleteRecord{}(&own);
        return kelStatusOk;
    });
}

// What a plan's family exports beside its creation.

template <auto id, class Plan>
KelStatus free_plan(Plan* plan) {
    return free_record<Plan>(plan, id);
}

template <auto id, class Plan>
KelStatus buffer_size(const Plan* plan, int* size) {
    if (const KelStatus status = check_record(plan, id, !size); status != kelStatusOk) return status;
    *size = plan->workBytes;
    return kelStatusOk;
}

} // namespace kels
