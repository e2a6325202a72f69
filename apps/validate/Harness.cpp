#include "Harness.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "Check.h"

namespace validate {

namespace {

// Quiet NaNs with a payload no plug-in computes: an output sample still
// holding it was never written, and one that added to it turned into NaN.
constexpr std::uint32_t kFloatSentinel = 0x7FC5A5A5u;
constexpr std::uint64_t kDoubleSentinel = 0x7FF8A5A5A5A5A5A5ull;
// Samples of sentinel before every channel, and after it as many as the
// block has (at least this many), to catch writes out of the block before
// they reach memory of anyone else.
constexpr int kGuard = 16;

template <typename S>
S sentinel() {
    if constexpr (sizeof(S) == 4)
        return std::bit_cast<float>(kFloatSentinel);
    else
        return std::bit_cast<double>(kDoubleSentinel);
}

template <typename S>
bool isSentinel(S value) {
    return std::bit_cast<std::conditional_t<sizeof(S) == 4, std::uint32_t, std::uint64_t>>(value) ==
           std::bit_cast<std::conditional_t<sizeof(S) == 4, std::uint32_t, std::uint64_t>>(sentinel<S>());
}

// Guard samples hold an ordinary number instead: NaN arithmetic keeps its
// payload, so a plug-in writing what it computed from a sentinel it read
// past the block would leave the sentinel's bits standing.
template <typename S>
S guardValue() {
    return static_cast<S>(-3.0517578125e33);
}

template <typename S>
bool sameBits(S a, S b) {
    using Bits = std::conditional_t<sizeof(S) == 4, std::uint32_t, std::uint64_t>;
    return std::bit_cast<Bits>(a) == std::bit_cast<Bits>(b);
}

// One channel with guard samples on both sides.
template <typename S>
struct Channel {
    std::vector<S> storage;
    explicit Channel(int frames) : storage(kGuard + frames + std::max(frames, kGuard), guardValue<S>()) {
        std::fill(data(), data() + frames, sentinel<S>());
    }
    S* data() { return storage.data() + kGuard; }
    bool guardsIntact(int frames) const {
        for (int i = 0; i < kGuard; ++i)
            if (!sameBits(storage[i], guardValue<S>())) return false;
        for (std::size_t i = kGuard + frames; i < storage.size(); ++i)
            if (!sameBits(storage[i], guardValue<S>())) return false;
        return true;
    }
};

template <typename S>
BlockOutcome processTyped(vsthost::Plugin& plugin, const Planar& input, int outputs, int frames, Buffers buffers) {
    const int inputs = static_cast<int>(input.size());
    const int length = std::max(frames, 0);
    const bool shared = buffers != Buffers::Separate;
    const int bufferCount = shared ? std::max(inputs, outputs) : inputs + outputs;
    std::vector<Channel<S>> channels;
    channels.reserve(bufferCount);
    for (int i = 0; i < bufferCount; ++i) channels.emplace_back(length);

    auto inputChannel = [&](int i) -> Channel<S>& { return channels[i]; };
    auto outputChannel = [&](int i) -> Channel<S>& { return channels[shared ? i : inputs + i]; };
    for (int c = 0; c < inputs; ++c)
        for (int i = 0; i < length; ++i) inputChannel(c).data()[i] = static_cast<S>(input[c][i]);

    std::vector<S*> inputPointers, outputPointers;
    for (int c = 0; c < inputs; ++c) inputPointers.push_back(inputChannel(c).data());
    for (int c = 0; c < outputs; ++c) outputPointers.push_back(outputChannel(c).data());
    if (buffers == Buffers::SharedArray) {
        // One array, as long as the longer direction needs.
        std::vector<S*> both;
        for (int c = 0; c < bufferCount; ++c) both.push_back(channels[c].data());
        inputPointers = outputPointers = both;
    }
    S** inputArray = inputPointers.data();
    S** outputArray = buffers == Buffers::SharedArray ? inputArray : outputPointers.data();

    if constexpr (sizeof(S) == 4)
        plugin.processFloatRaw(inputArray, outputArray, frames);
    else
        plugin.processDoubleRaw(inputArray, outputArray, frames);

    BlockOutcome outcome;
    outcome.output.assign(outputs, std::vector<double>(length));
    for (int c = 0; c < outputs; ++c)
        for (int i = 0; i < length; ++i) outcome.output[c][i] = outputChannel(c).data()[i];

    for (int c = 0; c < bufferCount && outcome.outside.empty(); ++c)
        if (!channels[c].guardsIntact(length))
            outcome.outside = format("wrote outside the block (buffer of %s %d)",
                                     !shared && c >= inputs ? "output"
                                     : shared               ? "channel"
                                                            : "input",
                                     !shared && c >= inputs ? c - inputs : c);
    if (!shared) {
        for (int c = 0; c < inputs && outcome.inputChanged.empty(); ++c)
            for (int i = 0; i < length; ++i)
                if (!sameBits(inputChannel(c).data()[i], static_cast<S>(input[c][i]))) {
                    outcome.inputChanged = format("input %d changed at frame %d", c, i);
                    break;
                }
    }
    // In place, the input fills the shared channels, so only the others can be told apart.
    for (int c = shared ? inputs : 0; c < outputs && outcome.unwritten.empty(); ++c) {
        int unwritten = 0, first = -1;
        for (int i = 0; i < length; ++i)
            if (isSentinel(outputChannel(c).data()[i])) {
                if (first < 0) first = i;
                ++unwritten;
            }
        if (unwritten)
            outcome.unwritten =
                format("output %d unwritten: %d of %d frames, from frame %d", c, unwritten, length, first);
    }
    outcome.fault = !outcome.outside.empty()        ? outcome.outside
                    : !outcome.inputChanged.empty() ? outcome.inputChanged
                                                    : outcome.unwritten;
    return outcome;
}

}  // namespace

std::string format(const char* pattern, ...) {
    char buffer[512];
    va_list args;
    va_start(args, pattern);
    std::vsnprintf(buffer, sizeof buffer, pattern, args);
    va_end(args);
    return buffer;
}

std::unique_ptr<vsthost::Plugin> createInstance(const std::string& path, float sampleRate, int blockSize, bool resume) {
    std::string error;
    auto plugin = vsthost::Plugin::load(path, error);
    if (!plugin) throw CheckFailure(error);
    plugin->open();
    plugin->setSampleRate(sampleRate);
    plugin->setBlockSize(blockSize);
    if (resume) plugin->resume();
    return plugin;
}

void applySetting(vsthost::Plugin& plugin, const Setting& setting) {
    for (int i = static_cast<int>(setting.size()) - 1; i >= 0; --i) plugin.setParameter(i, setting[i]);
}

float randomValue(Random& random) {
    const int pick = std::uniform_int_distribution<int>(0, 19)(random);
    if (pick == 0) return 0.0f;
    if (pick == 1) return 1.0f;
    return std::uniform_real_distribution<float>(0.0f, 1.0f)(random);
}

Setting randomSetting(int parameters, Random& random) {
    Setting setting(parameters);
    for (float& value : setting) value = randomValue(random);
    return setting;
}

std::vector<std::pair<std::string, Setting>> standardSettings(int parameters, Random& random, int randomCount) {
    std::vector<std::pair<std::string, Setting>> settings = {{"as created", {}},
                                                             {"all 0", Setting(parameters, 0.0f)},
                                                             {"all 0.5", Setting(parameters, 0.5f)},
                                                             {"all 1", Setting(parameters, 1.0f)}};
    for (int i = 0; i < randomCount; ++i)
        settings.emplace_back(format("random setting %d", i + 1), randomSetting(parameters, random));
    return settings;
}

Planar noise(int channels, int frames, double amplitude, Random& random) {
    std::uniform_real_distribution<double> uniform(-amplitude, amplitude);
    Planar signal(channels, std::vector<double>(frames));
    for (auto& channel : signal)
        for (double& sample : channel) sample = static_cast<float>(uniform(random));
    return signal;
}

Planar silence(int channels, int frames) { return Planar(channels, std::vector<double>(frames, 0.0)); }

Planar slice(const Planar& signal, int first, int frames) {
    Planar part;
    for (const auto& channel : signal) part.emplace_back(channel.begin() + first, channel.begin() + first + frames);
    return part;
}

void append(Planar& to, const Planar& from) {
    if (to.empty()) to.resize(from.size());
    for (std::size_t c = 0; c < from.size(); ++c) to[c].insert(to[c].end(), from[c].begin(), from[c].end());
}

BlockOutcome processBlock(vsthost::Plugin& plugin, const Planar& input, int outputs, int frames, Precision precision,
                          Buffers buffers) {
    return precision == Precision::Float ? processTyped<float>(plugin, input, outputs, frames, buffers)
                                         : processTyped<double>(plugin, input, outputs, frames, buffers);
}

BlockOutcome render(vsthost::Plugin& plugin, const Planar& input, int outputs, const std::function<int(int)>& nextBlock,
                    Precision precision, Buffers buffers, const std::function<void()>& between) {
    BlockOutcome whole;
    whole.output.assign(outputs, {});
    const int total = input.empty() ? 0 : static_cast<int>(input[0].size());
    int done = 0;
    while (done < total) {
        const int frames = std::max(1, std::min(nextBlock(total - done), total - done));
        if (done > 0 && between) between();
        BlockOutcome block = processBlock(plugin, slice(input, done, frames), outputs, frames, precision, buffers);
        append(whole.output, block.output);
        if (!block.fault.empty()) {
            const std::string where = format(" (block of %d frames at frame %d)", frames, done);
            whole.fault = block.fault + where;
            if (!block.outside.empty()) whole.outside = block.outside + where;
            if (!block.inputChanged.empty()) whole.inputChanged = block.inputChanged + where;
            if (!block.unwritten.empty()) whole.unwritten = block.unwritten + where;
            return whole;
        }
        done += frames;
    }
    return whole;
}

std::string findNonFinite(const Planar& signal, bool subnormals, Precision precision) {
    const double smallestNormal = precision == Precision::Float ? 1.1754943508222875e-38 : 2.2250738585072014e-308;
    for (std::size_t c = 0; c < signal.size(); ++c)
        for (std::size_t i = 0; i < signal[c].size(); ++i) {
            const double v = signal[c][i];
            if (std::isnan(v)) return format("NaN on output %zu at frame %zu", c, i);
            if (std::isinf(v)) return format("infinity on output %zu at frame %zu", c, i);
            if (subnormals && v != 0 && std::fabs(v) < smallestNormal)
                return format("subnormal %g on output %zu at frame %zu", v, c, i);
        }
    return {};
}

double peak(const Planar& signal) {
    double result = 0;
    for (const auto& channel : signal)
        for (double v : channel) result = std::max(result, std::fabs(v));
    return result;
}

Difference largestDifference(const Planar& a, const Planar& b) {
    Difference largest;
    for (std::size_t c = 0; c < std::min(a.size(), b.size()); ++c)
        for (std::size_t i = 0; i < std::min(a[c].size(), b[c].size()); ++i) {
            const double d = std::fabs(a[c][i] - b[c][i]);
            if (d > largest.value || (std::isnan(d) && !std::isnan(largest.value))) {
                largest = {d, static_cast<int>(c), static_cast<int>(i)};
                if (std::isnan(d)) return largest;
            }
        }
    return largest;
}

std::string compareSignals(const Planar& a, const Planar& b, double absolute, double relative) {
    const Difference d = largestDifference(a, b);
    const double limit = absolute + relative * peak(a);
    if (d.channel < 0 || d.value <= limit) return {};
    return format("output %d differs by %.3g at frame %d (%.9g against %.9g; allowed %.2g)", d.channel, d.value,
                  d.frame, b[d.channel][d.frame], a[d.channel][d.frame], limit);
}

TextAnswer askText(vsthost::Plugin& plugin, VstInt32 opcode, VstInt32 index, VstIntPtr value, std::size_t limit) {
    constexpr std::size_t kRoom = 1024;
    constexpr unsigned char kFiller = 0xA5;
    std::vector<unsigned char> buffer(kRoom, kFiller);
    TextAnswer result;
    result.answer = plugin.dispatch(opcode, index, value, buffer.data());
    std::size_t changed = 0;
    for (std::size_t i = 0; i < kRoom; ++i)
        if (buffer[i] != kFiller) changed = i + 1;
    result.written = changed > 0;
    if (!result.written) return result;  // nothing said: the host keeps its own (empty) text
    const auto* begin = reinterpret_cast<const char*>(buffer.data());
    const std::size_t length = strnlen(begin, kRoom);
    result.text.assign(begin, length);
    if (length >= limit)
        result.fault = format("%zu bytes with the terminator where the host gives %zu", length + 1, limit);
    else if (changed > limit)
        result.fault = format("wrote %zu bytes where the host gives %zu", changed, limit);
    else if (!validUtf8(result.text))
        result.fault = "not valid UTF-8";
    return result;
}

bool validUtf8(const std::string& text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto c = static_cast<unsigned char>(text[i]);
        const int extra = c < 0x80 ? 0 : (c >> 5) == 6 ? 1 : (c >> 4) == 14 ? 2 : (c >> 3) == 30 ? 3 : -1;
        if (extra < 0 || text.size() - i <= static_cast<std::size_t>(extra)) return false;  // bad lead or cut short
        for (int k = 1; k <= extra; ++k)
            if ((static_cast<unsigned char>(text[i + k]) >> 6) != 2) return false;
        i += extra + 1;
    }
    return true;
}

}  // namespace validate
