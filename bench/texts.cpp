// SPDX-License-Identifier: MIT
// RZString against the standard's own texts.
#include "text/rzstring.h"

#include <benchmark/benchmark.h>

#include <cstring>

namespace {

constexpr char kAscii[] = "MANUFACTURER_NUMBER_"; // 20 characters

void makeAndCopy(benchmark::State& state) {
    for (auto _ : state) {
        const char* source = kAscii;
        benchmark::DoNotOptimize(source);
        RZString text(source);
        RZString copy(text);
        benchmark::DoNotOptimize(copy.view().data());
    }
}
BENCHMARK(makeAndCopy);

/// From the same pointer: neither of the two knows the length beforehand.
void makeAndCopyStandard(benchmark::State& state) {
    for (auto _ : state) {
        const char* source = kAscii;
        benchmark::DoNotOptimize(source);
        std::u16string text(source, source + std::strlen(source));
        std::u16string copy(text);
        benchmark::DoNotOptimize(copy.data());
    }
}
BENCHMARK(makeAndCopyStandard);

void equality(benchmark::State& state) {
    RZString a(kAscii), b(kAscii);
    for (auto _ : state) {
        benchmark::DoNotOptimize(&a);
        benchmark::ClobberMemory();
        bool same = a == b;
        benchmark::DoNotOptimize(same);
    }
}
BENCHMARK(equality);

void equalityByTraits(benchmark::State& state) {
    lm::WideString a = RZString(kAscii).str(), b = a;
    for (auto _ : state) {
        benchmark::DoNotOptimize(&a);
        benchmark::ClobberMemory();
        bool same = a == b;
        benchmark::DoNotOptimize(same);
    }
}
BENCHMARK(equalityByTraits);

void joinedByConstructor(benchmark::State& state) {
    const RZString a("RZ_ORDEM_PAG_"), b("GRUPO DE COMANDO"), c("$"), d("FORMATO"), e("0000000012");
    for (auto _ : state) {
        RZString text(a, b, c, d, e);
        benchmark::DoNotOptimize(text.view().data());
    }
}
BENCHMARK(joinedByConstructor);

void joinedByPlus(benchmark::State& state) {
    const RZString a("RZ_ORDEM_PAG_"), b("GRUPO DE COMANDO"), c("$"), d("FORMATO"), e("0000000012");
    for (auto _ : state) {
        RZString text = a + b + c + d + e;
        benchmark::DoNotOptimize(text.view().data());
    }
}
BENCHMARK(joinedByPlus);

} // namespace
