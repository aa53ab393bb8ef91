#pragma once

#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

#include "resources/synthesis/SoundFile.h"

namespace quorvane::synthesis {

/// A second-order filter. Frequencies are in Hz.
class Biquad {
public:
    double next(double input) {
        const double output =
            m_b0 * input + m_b1 * m_input1 + m_b2 * m_input2 - m_a1 * m_output1 - m_a2 * m_output2;
        m_input2 = std::exchange(m_input1, input);
        m_output2 = std::exchange(m_output1, output);
        return output;
    }

    /// Butterworth: -3 dB at `frequency`, then -12 dB per octave.
    static Biquad lowPass(double frequency) {
        const Corner corner(frequency, std::numbers::sqrt2 / 2);
        const double b = (1 - corner.cosine) / 2;
        return {corner, b, 2 * b, b};
    }

    static Biquad highPass(double frequency) {
        const Corner corner(frequency, std::numbers::sqrt2 / 2);
        const double b = (1 + corner.cosine) / 2;
        return {corner, b, -2 * b, b};
    }

    /// Gain 1 at `frequency`; the -3 dB bandwidth is frequency / q.
    static Biquad bandPass(double frequency, double q) {
        const Corner corner(frequency, q);
        return {corner, corner.alpha, 0, -corner.alpha};
    }

private:
    struct Corner {
        Corner(double frequency, double q)
            : cosine(std::cos(2 * std::numbers::pi * frequency / sampleRate)),
              alpha(std::sin(2 * std::numbers::pi * frequency / sampleRate) / (2 * q)) {}

        double cosine;
        double alpha;
    };

    Biquad(const Corner& corner, double b0, double b1, double b2)
        : m_b0(b0 / (1 + corner.alpha)), m_b1(b1 / (1 + corner.alpha)),
          m_b2(b2 / (1 + corner.alpha)), m_a1(-2 * corner.cosine / (1 + corner.alpha)),
          m_a2((1 - corner.alpha) / (1 + corner.alpha)) {}

    double m_b0, m_b1, m_b2, m_a1, m_a2;
    double m_input1 = 0;
    double m_input2 = 0;
    double m_output1 = 0;
    double m_output2 = 0;
};

/// One resonance of a struck or rubbed body: two poles, with zeros at 0 Hz and at half the sample
/// rate. The envelope of its impulse response starts at the gain and falls to 1/e in the decay time
/// (s).
class Mode {
public:
    Mode(double frequency, double decayTime, double gain) {
        const double radius = std::exp(-1 / (decayTime * sampleRate));
        m_feedback1 = 2 * radius * std::cos(2 * std::numbers::pi * frequency / sampleRate);
        m_feedback2 = -radius * radius;
        m_gain = gain;
    }

    double next(double input) {
        const double output =
            m_gain * (input - m_input2) + m_feedback1 * m_output1 + m_feedback2 * m_output2;
        m_input2 = std::exchange(m_input1, input);
        m_output2 = std::exchange(m_output1, output);
        return output;
    }

private:
    double m_feedback1 = 0;
    double m_feedback2 = 0;
    double m_gain = 0;
    double m_input1 = 0;
    double m_input2 = 0;
    double m_output1 = 0;
    double m_output2 = 0;
};

/// A body: the sum of its modes.
class Body {
public:
    explicit Body(std::vector<Mode> modes) : m_modes(std::move(modes)) {}

    double next(double input) {
        double sum = 0;
        for (Mode& mode : m_modes)
            sum += mode.next(input);
        return sum;
    }

private:
    std::vector<Mode> m_modes;
};

} // namespace quorvane::synthesis
