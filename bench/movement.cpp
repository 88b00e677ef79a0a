// Data movement, beside the standard library's functions for the same bytes.
#include "vectors.h"

#include <cstring>

namespace bench {
namespace {

template <class T>
void copy(const char* function, KelStatus (*call)(const T*, T*, int)) {
    contend_vectors("movement", function, ours, call);
    contend_vectors("movement", function, "memcpy",
                    [](const T* source, T* destination, int n) { std::memcpy(destination, source, n * sizeof(T)); });
}

template <class T>
void zero(const char* function, KelStatus (*call)(T*, int)) {
    contend_vectors("movement", function, ours, call);
    contend_vectors("movement", function, "memset",
                    [](T* destination, int n) { std::memset(static_cast<void*>(destination), 0, n * sizeof(T)); });
}

/// A byte repeated is less work than an element repeated: the mark is memset all the same.
template <class T>
void set(const char* function, KelStatus (*call)(T, T*, int)) {
    contend_vectors("movement", function, ours, call);
    contend_vectors("movement", function, "memset",
                    [](T, T* destination, int n) { std::memset(static_cast<void*>(destination), 1, n * sizeof(T)); });
}

template <class Call>
void alone(const char* function, Call call) {
    contend_vectors("movement", function, ours, call);
}

const Registration movement([] {
    copy("kelsCopy_8u", kelsCopy_8u);
    copy("kelsCopy_16s", kelsCopy_16s);
    copy("kelsCopy_32f", kelsCopy_32f);
    copy("kelsCopy_64fc", kelsCopy_64fc);
    zero("kelsZero_8u", kelsZero_8u);
    zero("kelsZero_32f", kelsZero_32f);
    zero("kelsZero_64fc", kelsZero_64fc);
    set("kelsSet_8u", kelsSet_8u);
    set("kelsSet_16s", kelsSet_16s);
    set("kelsSet_32f", kelsSet_32f);
    set("kelsSet_64f", kelsSet_64f);
    set("kelsSet_64fc", kelsSet_64fc);
    alone("kelsFlip_8u", kelsFlip_8u);
    alone("kelsFlip_32f", kelsFlip_32f);
    alone("kelsFlip_32f_I", kelsFlip_32f_I);
    alone("kelsReal_16sc", kelsReal_16sc);
    alone("kelsReal_32fc", kelsReal_32fc);
    alone("kelsImag_32fc", kelsImag_32fc);
    alone("kelsCplxToReal_32fc", kelsCplxToReal_32fc);
    alone("kelsRealToCplx_32f", kelsRealToCplx_32f);
    alone("kelsConj_16sc", kelsConj_16sc);
    alone("kelsConj_32fc", kelsConj_32fc);
    alone("kelsConjFlip_32fc", kelsConjFlip_32fc);
});

} // namespace
} // namespace bench
