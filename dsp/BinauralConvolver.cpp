#include "BinauralConvolver.h"

#include <fftw3.h>

#include <algorithm>
#include <bit>
#include <climits>
#include <cstring>
#include <map>
#include <mutex>
#include <vector>

namespace sorvane {

namespace {

struct FftwFree {
    void operator()(float* p) const { fftwf_free(p); }
};
// FFTW's own allocation, so every transform runs on the alignment it was planned for.
using Buffer = std::unique_ptr<float[], FftwFree>;

Buffer zeroedBuffer(size_t floats) {
    Buffer b(static_cast<float*>(fftwf_malloc(floats * sizeof(float))));
    if (!b) throw std::bad_alloc();
    std::fill_n(b.get(), floats, 0.0f);
    return b;
}

struct Plans {
    fftwf_plan forward = nullptr, inverse = nullptr;
};

// FFTW's planner is not thread-safe: one process-wide set of plans per size,
// made under one lock and shared by every instance. Plans are estimated, not
// measured: measuring takes up to half a second per size and would let the
// ears' last bits depend on the timings of the moment.
class PlanCache {
public:
    Plans get(int size) {
        std::lock_guard lock(mutex_);
        Plans& plans = bySize_[size];
        if (!plans.forward) {
            Buffer real = zeroedBuffer(size_t(size)), spectrum = zeroedBuffer(size_t(size) + 2);
            auto* bins = reinterpret_cast<fftwf_complex*>(spectrum.get());
            plans.forward = fftwf_plan_dft_r2c_1d(size, real.get(), bins, FFTW_ESTIMATE);
            plans.inverse = fftwf_plan_dft_c2r_1d(size, bins, real.get(), FFTW_ESTIMATE);
        }
        return plans;
    }
    ~PlanCache() {
        std::lock_guard lock(mutex_);
        for (auto& [size, plans] : bySize_) {
            fftwf_destroy_plan(plans.forward);
            fftwf_destroy_plan(plans.inverse);
        }
    }

private:
    std::mutex mutex_;
    std::map<int, Plans> bySize_;
};

PlanCache& planCache() {
    static PlanCache cache;
    return cache;
}

// acc += x * h over interleaved complex bins; kept plain so the compiler vectorises it,
// once more for AVX2 where the processor has it (without fused multiply-adds, which would change results).
#if defined(__x86_64__) && defined(__GNUC__)
__attribute__((target_clones("avx2", "default")))
#endif
void multiplyAdd(float* __restrict acc, const float* __restrict x, const float* __restrict h, int floats) {
    for (int b = 0; b < floats; b += 2) {
        const float xr = x[b], xi = x[b + 1], hr = h[b], hi = h[b + 1];
        acc[b] += xr * hr - xi * hi;
        acc[b + 1] += xr * hi + xi * hr;
    }
}

bool sounds(const float* in, int frames) {
    for (int t = 0; t < frames; ++t)
        if (in[t] != 0) return true;
    return false;
}

constexpr long long kNeverHeard = LLONG_MIN / 2;
enum Ear { kMidSum, kSideSum };

}  // namespace

struct BinauralConvolver::State {
    int size = 0;        // P: frames per partition
    int partitions = 0;  // K: partitions per response
    int bins = 0;        // floats of one spectrum (P + 1 complex values)
    int stride = 0;      // floats between spectra, keeping each aligned
    Plans plans;
    Buffer responses;  // [input][k]: spectrum of response taps kP .. kP + P - 1, scaled for the inverse
    Buffer delayLine;  // [input][slot]: spectrum of the window that ended partition j, at slot j mod K
    Buffer windows;    // [input]: the previous partition, then the current one as far as filled (zeros after)
    Buffer sums[2];    // mid and side spectra being summed
    Buffer direct[2];  // their inverse: the current partition's frames in the second half
    Buffer older[2];   // the same for the older partitions, summed when a partition begins
    Buffer silence;    // stands in for a sum nothing went into
    std::vector<unsigned char> slotFilled;  // [input][slot]: the slot holds that input's spectrum
    long long heardAt[kBinauralInputs];     // the last partition in which each input was not silent
    long long partition = -1;               // j
    int filled = 0;                         // frames of partition j taken
    bool olderSounding = false;

    float* response(int input, int k) { return responses.get() + size_t(input * partitions + k) * stride; }
    // Partitions before the first (j < 0) map to slots like any other; their flags are clear.
    int slotOf(long long j) const { return int((j % partitions + partitions) % partitions); }
    float* slot(int input, long long j) { return delayLine.get() + size_t(input * partitions + slotOf(j)) * stride; }
    unsigned char& slotFlag(int input, long long j) { return slotFilled[size_t(input * partitions + slotOf(j))]; }
    float* window(int input) { return windows.get() + size_t(input) * 2 * size; }

    void forget();
    void beginPartition();
    void sumOlder();
    void processChunk(const float* const* inputs, int offset, int frames, float* left, float* right);
};

BinauralConvolver::BinauralConvolver() = default;
BinauralConvolver::~BinauralConvolver() = default;

void BinauralConvolver::prepare(const HeadResponses& set, int maxBlock) {
    auto s = std::make_unique<State>();
    s->size = std::clamp(int(std::bit_ceil(unsigned(std::max(maxBlock, 1)))), 32, 4096);
    size_t taps = 1;
    for (const auto& r : set.response) taps = std::max(taps, r.size());
    s->partitions = int((taps + size_t(s->size) - 1) / size_t(s->size));
    s->bins = 2 * (s->size + 1);
    s->stride = (s->bins + 15) / 16 * 16;
    s->plans = planCache().get(2 * s->size);

    const size_t spectra = size_t(kBinauralInputs) * size_t(s->partitions) * size_t(s->stride);
    s->responses = zeroedBuffer(spectra);
    s->delayLine = zeroedBuffer(spectra);
    s->windows = zeroedBuffer(size_t(kBinauralInputs) * 2 * s->size);
    for (int e : {kMidSum, kSideSum}) {
        s->sums[e] = zeroedBuffer(size_t(s->stride));
        s->direct[e] = zeroedBuffer(2 * size_t(s->size));
        s->older[e] = zeroedBuffer(2 * size_t(s->size));
    }
    s->silence = zeroedBuffer(2 * size_t(s->size));
    s->slotFilled.assign(size_t(kBinauralInputs * s->partitions), 0);

    // FFTW's inverse is unscaled: the 1 / 2P goes into the responses.
    const float scale = 1.0f / float(2 * s->size);
    Buffer taken = zeroedBuffer(2 * size_t(s->size));
    for (int i = 0; i < kBinauralInputs; ++i) {
        const std::vector<float>& r = set.response[i];
        for (int k = 0; k < s->partitions; ++k) {
            for (int t = 0; t < s->size; ++t) {
                const size_t at = size_t(k) * size_t(s->size) + size_t(t);
                taken[t] = at < r.size() ? r[at] * scale : 0.0f;
            }
            fftwf_execute_dft_r2c(s->plans.forward, taken.get(), reinterpret_cast<fftwf_complex*>(s->response(i, k)));
        }
    }
    s->forget();
    state_ = std::move(s);
}

void BinauralConvolver::clear() {
    if (state_) state_->forget();
}

void BinauralConvolver::State::forget() {
    std::fill_n(windows.get(), size_t(kBinauralInputs) * 2 * size, 0.0f);
    std::fill(slotFilled.begin(), slotFilled.end(), 0);
    std::fill_n(heardAt, kBinauralInputs, kNeverHeard);
    partition = -1;
    filled = 0;
    olderSounding = false;
}

void BinauralConvolver::process(const float* const* inputs, int frames, float* left, float* right) {
    State& s = *state_;
    for (int done = 0; done < frames;) {
        const int n = std::min(frames - done, s.size - s.filled);
        s.processChunk(inputs, done, n, left + done, right + done);
        done += n;
    }
}

// Moves the windows on by a partition. Only an input heard in the last two
// partitions has anything in its window to move or clear.
void BinauralConvolver::State::beginPartition() {
    const long long j = ++partition;
    for (int i = 0; i < kBinauralInputs; ++i) {
        float* w = window(i);
        if (heardAt[i] == j - 1) {
            std::memcpy(w, w + size, sizeof(float) * size_t(size));
            std::fill_n(w + size, size, 0.0f);
        } else if (heardAt[i] == j - 2) {
            std::fill_n(w, size, 0.0f);
        }
        slotFlag(i, j) = 0;  // the oldest slot, no longer needed, becomes partition j's
    }
}

// What partitions j - 1 .. j - K + 1 add to partition j's frames.
void BinauralConvolver::State::sumOlder() {
    bool any[2] = {false, false};
    for (int e : {kMidSum, kSideSum}) std::fill_n(sums[e].get(), bins, 0.0f);
    for (int i = 0; i < kBinauralInputs; ++i) {
        const int e = isSideInput(i) ? kSideSum : kMidSum;
        for (int k = 1; k < partitions; ++k) {
            if (!slotFlag(i, partition - k)) continue;
            multiplyAdd(sums[e].get(), slot(i, partition - k), response(i, k), bins);
            any[e] = true;
        }
    }
    olderSounding = any[kMidSum] || any[kSideSum];
    for (int e : {kMidSum, kSideSum}) {
        if (any[e]) fftwf_execute_dft_c2r(plans.inverse, reinterpret_cast<fftwf_complex*>(sums[e].get()), older[e].get());
        else std::fill_n(older[e].get() + size, size, 0.0f);
    }
}

// `frames` frames that stay inside partition j.
void BinauralConvolver::State::processChunk(const float* const* inputs, int offset, int frames, float* left, float* right) {
    const bool begins = filled == 0;
    const bool whole = begins && frames == size;
    if (begins) beginPartition();
    if (begins && !whole) sumOlder();
    const long long j = partition;

    bool any[2] = {false, false};
    for (int e : {kMidSum, kSideSum}) std::fill_n(sums[e].get(), bins, 0.0f);
    for (int i = 0; i < kBinauralInputs; ++i) {
        const float* in = inputs ? inputs[i] : nullptr;
        if (in && sounds(in + offset, frames)) {
            std::memcpy(window(i) + size + filled, in + offset, sizeof(float) * size_t(frames));
            heardAt[i] = j;
        }
        const int e = isSideInput(i) ? kSideSum : kMidSum;
        if (heardAt[i] >= j - 1) {  // the window holds something: transform it as far as filled
            fftwf_execute_dft_r2c(plans.forward, window(i), reinterpret_cast<fftwf_complex*>(slot(i, j)));
            slotFlag(i, j) = 1;
            multiplyAdd(sums[e].get(), slot(i, j), response(i, 0), bins);
            any[e] = true;
        }
        for (int k = 1; whole && k < partitions; ++k) {
            if (!slotFlag(i, j - k)) continue;
            multiplyAdd(sums[e].get(), slot(i, j - k), response(i, k), bins);
            any[e] = true;
        }
    }
    for (int e : {kMidSum, kSideSum})
        if (any[e]) fftwf_execute_dft_c2r(plans.inverse, reinterpret_cast<fftwf_complex*>(sums[e].get()), direct[e].get());

    // Overlap-save: the second half of each inverse holds the partition's frames.
    const int from = size + filled;
    const float* mid = (any[kMidSum] ? direct[kMidSum].get() : silence.get()) + from;
    const float* side = (any[kSideSum] ? direct[kSideSum].get() : silence.get()) + from;
    const bool addOlder = !whole && olderSounding;
    const float* olderMid = (addOlder ? older[kMidSum].get() : silence.get()) + from;
    const float* olderSide = (addOlder ? older[kSideSum].get() : silence.get()) + from;
    for (int t = 0; t < frames; ++t) {
        const float m = mid[t] + olderMid[t], sd = side[t] + olderSide[t];
        left[t] = m + sd;
        right[t] = m - sd;
    }
    filled += frames;
    if (filled == size) filled = 0;
}

}  // namespace sorvane
