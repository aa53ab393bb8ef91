#include "tests/sounds/Measures.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <memory>
#include <numbers>
#include <numeric>
#include <stdexcept>

#include <ebur128.h>
#include <kiss_fftr.h>

namespace quorvane {

namespace {

struct MeterCloser {
    void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
};

using Meter = std::unique_ptr<ebur128_state, MeterCloser>;

Meter makeMeter(int modes) {
    Meter meter(ebur128_init(1, static_cast<unsigned long>(sampleRate), modes));
    if (!meter)
        throw std::runtime_error("no loudness meter");
    return meter;
}

void feed(const Meter& meter, std::span<const float> samples) {
    if (ebur128_add_frames_float(meter.get(), samples.data(), samples.size()) != EBUR128_SUCCESS)
        throw std::runtime_error("the loudness meter refuses samples");
}

using Bins = std::vector<kiss_fft_cpx>;

struct FFTCloser {
    void operator()(kiss_fftr_state* state) const { kiss_fftr_free(state); }
};

using FFT = std::unique_ptr<kiss_fftr_state, FFTCloser>;

FFT makeFFT(std::size_t size, bool inverse) {
    return FFT(kiss_fftr_alloc(static_cast<int>(size), inverse ? 1 : 0, nullptr, nullptr));
}

Bins transform(Samples samples, std::size_t size) {
    samples.resize(size);
    Bins bins(size / 2 + 1);
    kiss_fftr(makeFFT(size, false).get(), samples.data(), bins.data());
    return bins;
}

double power(const kiss_fft_cpx& bin) {
    return double{bin.r} * bin.r + double{bin.i} * bin.i;
}

} // namespace

double decibels(double factor) {
    return 20 * std::log10(factor);
}

double integratedLoudness(const Samples& samples) {
    const Meter meter = makeMeter(EBUR128_MODE_I);
    feed(meter, samples);
    double loudness = 0;
    ebur128_loudness_global(meter.get(), &loudness);
    return loudness;
}

double loudestStretch(const Samples& samples, double duration) {
    const Meter meter = makeMeter(EBUR128_MODE_M);
    const auto milliseconds = static_cast<unsigned long>(std::lround(duration * 1000));
    ebur128_set_max_window(meter.get(), std::max(400UL, milliseconds));
    Samples followedBySilence = samples;
    followedBySilence.resize(samples.size() + frames(duration));
    const std::span all(followedBySilence);
    const std::size_t step = frames(0.001);
    double loudest = -HUGE_VAL;
    for (std::size_t place = 0; place + step <= all.size(); place += step) {
        feed(meter, all.subspan(place, step));
        double loudness = 0;
        ebur128_loudness_window(meter.get(), milliseconds, &loudness);
        loudest = std::max(loudest, loudness);
    }
    return loudest;
}

double truePeak(const Samples& samples) {
    const Meter meter = makeMeter(EBUR128_MODE_TRUE_PEAK);
    feed(meter, samples);
    double peak = 0;
    ebur128_true_peak(meter.get(), 0, &peak);
    return decibels(peak);
}

double mean(std::span<const float> samples) {
    return std::accumulate(samples.begin(), samples.end(), 0.0) /
           static_cast<double>(samples.size());
}

double rootMeanSquare(std::span<const float> samples) {
    double sum = 0;
    for (const float sample : samples)
        sum += double{sample} * sample;
    return std::sqrt(sum / static_cast<double>(samples.size()));
}

std::vector<double> levels(const Samples& samples, std::size_t window, std::size_t hop) {
    std::vector<double> levels;
    for (std::size_t place = 0; place + window <= samples.size(); place += hop)
        levels.push_back(rootMeanSquare(std::span(samples).subspan(place, window)));
    return levels;
}

Samples band(const Samples& samples, double low, double high) {
    const std::size_t size = std::bit_ceil(samples.size());
    Bins bins = transform(samples, size);
    for (std::size_t i = 0; i < bins.size(); ++i) {
        const double frequency = static_cast<double>(i) * sampleRate / static_cast<double>(size);
        if (frequency < low || frequency > high)
            bins[i] = {0, 0};
    }
    Samples result(size);
    kiss_fftri(makeFFT(size, true).get(), bins.data(), result.data());
    result.resize(samples.size());
    for (float& sample : result)
        sample /= static_cast<float>(size);
    return result;
}

std::vector<double> powerSpectrum(std::span<const float> samples, std::size_t size) {
    Samples windowed(samples.begin(), samples.end());
    for (std::size_t i = 0; i < windowed.size(); ++i) {
        const double way = static_cast<double>(i) / static_cast<double>(windowed.size());
        windowed[i] *= static_cast<float>(0.5 - 0.5 * std::cos(2 * std::numbers::pi * way));
    }
    const Bins bins = transform(windowed, size);
    std::vector<double> powers(bins.size());
    std::transform(bins.begin(), bins.end(), powers.begin(), power);
    return powers;
}

double shareOfPower(const Samples& samples, double low, double high) {
    return std::pow(rootMeanSquare(band(samples, low, high)) / rootMeanSquare(samples), 2);
}

double quantile(std::vector<double> values, double share) {
    const auto place = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + place, values.end());
    return values[static_cast<std::size_t>(place)];
}

double variation(std::span<const double> values) {
    const auto count = static_cast<double>(values.size());
    const double mean = std::accumulate(values.begin(), values.end(), 0.0) / count;
    double squares = 0;
    for (const double value : values)
        squares += (value - mean) * (value - mean);
    return std::sqrt(squares / count) / mean;
}

} // namespace quorvane
