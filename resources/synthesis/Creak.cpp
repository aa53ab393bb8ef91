// Makes the creak of a dry door hinge: `creak FILE.wav`. The same samples every time.
//
// A dry hinge does not turn steadily. Its surfaces stick; the turning lid winds up the parts around
// them like a spring until the force is more than static friction can hold; they slip, the force
// drops, and they stick again. What is heard is that train of slips through whatever the hinge is
// screwed to. The model has those two halves:
//
// - Stick and slip, event by event. A spring is wound by the lid's speed, which wanders as a hand's
//   does. Static friction rises with the logarithm of the time for which the surfaces have rested
//   (E. Rabinowicz, "Friction and Wear of Materials", 1965) and differs from contact to contact. A
//   slip lets go of most of the force, never of the same share, so the pulses are irregular and
//   their rate, some 30 to 150 a second, follows the speed: that glide is what makes a creak of it.
// - The body: a bank of modes, as in F. Avanzini, S. Serafin and D. Rocchesso, "Interactive
//   simulation of rigid body interaction with friction-induced sound generation", IEEE Transactions
//   on Speech and Audio Processing 13 (2005). Wood rings low and dies within some 15 ms, the metal
//   of the hinge rings higher and shorter. A. Farnell, "Designing Sound" (2010), chapter
//   "Creaking", takes the same two halves.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <numbers>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr double sampleRate = 44100;
constexpr double length = 3.2;
constexpr std::size_t frameCount = static_cast<std::size_t>(length * sampleRate);
// The encoder may overshoot the highest sample by a decibel or so.
constexpr double peakLevel = 0.7;

/// Draws that are the same with every standard library, unlike its distributions.
class Draws {
public:
    /// From 0 up to 1.
    double uniform() { return static_cast<double>(m_engine() >> 11U) * 0x1p-53; }

    /// Of mean 0 and standard deviation 1, near enough: the sum of twelve uniform draws.
    double normal() {
        double sum = -6;
        for (int i = 0; i < 12; ++i)
            sum += uniform();
        return sum;
    }

private:
    std::mt19937_64 m_engine{20240229};
};

/// The lid's speed against its mean: an arc from a slow start over a quicker middle to a slow end,
/// and the unsteadiness of a hand on top, as noise that is remembered for a fifth of a second.
class HandSpeed {
public:
    double next(double time, Draws& draws) {
        constexpr double memory = 0.2;
        constexpr double unsteadiness = 0.28;
        const double keep = std::exp(-1 / (memory * sampleRate));
        m_wander = keep * m_wander + std::sqrt(1 - keep * keep) * unsteadiness * draws.normal();
        const double arc = 0.55 + 0.75 * std::pow(std::sin(std::numbers::pi * time / length), 2);
        return arc * std::exp(std::clamp(m_wander, -0.6, 0.6));
    }

private:
    double m_wander = 0;
};

/// The contact of the two surfaces. Forces are in units of the least static friction.
class Contact {
public:
    /// Turns the hinge on by one sample; the force that a slip lets go of, or 0 while it sticks.
    double turn(double speed, Draws& draws) {
        // Wound from rest to the least static friction within this time at mean speed.
        constexpr double windingTime = 0.0135;
        m_force += speed / (windingTime * sampleRate);
        m_restingTime += 1 / sampleRate;
        const double aging = 0.12 * std::log10(1 + m_restingTime / 0.002);
        if (m_force < m_roughness + aging)
            return 0;
        return slip(draws);
    }

private:
    double slip(Draws& draws) {
        // One slip in five catches on the next asperity soon after and is followed by another.
        const bool caught = draws.uniform() < 0.2;
        const double share = caught ? 0.25 + 0.2 * draws.uniform() : 0.8 + 0.15 * draws.uniform();
        const double released = share * m_force;
        m_force -= released;
        m_restingTime = 0;
        m_roughness = std::clamp(1 + 0.1 * draws.normal(), 0.75, 1.3);
        return released;
    }

    double m_force = 0.95;
    double m_restingTime = 0;
    double m_roughness = 1;
};

/// One resonance: two poles, with zeros at 0 Hz and at half the sample rate.
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

/// What the hinge is screwed to and what it is made of: frequency in Hz, decay in s, gain.
std::vector<Mode> makeBody() {
    return {
        // The panel, then its higher bending modes, none a multiple of another.
        {236, 0.016, 0.35},
        {411, 0.014, 0.55},
        {683, 0.012, 0.80},
        {957, 0.011, 1.00},
        {1290, 0.009, 1.00},
        {1744, 0.008, 0.95},
        // Leaves and pin of the hinge.
        {2370, 0.007, 1.00},
        {3190, 0.006, 0.95},
        {4480, 0.004, 0.70},
        {6120, 0.003, 0.55},
    };
}

/// The force that the slips put into the body: each lets go over a quarter of a millisecond.
std::vector<double> makeSlips(Draws& draws) {
    constexpr std::size_t slipFrames = 11;
    constexpr double rubbing = 0.35;
    std::vector<double> force(frameCount + slipFrames);
    HandSpeed hand;
    Contact contact;
    // The last slip rings out before the end.
    const std::size_t lastSlip = frameCount - static_cast<std::size_t>(0.06 * sampleRate);
    for (std::size_t frame = 0; frame < lastSlip; ++frame) {
        const double time = static_cast<double>(frame) / sampleRate;
        const double released = contact.turn(hand.next(time, draws), draws);
        if (released == 0)
            continue;
        for (std::size_t i = 0; i < slipFrames; ++i) {
            const double phase = static_cast<double>(i) / slipFrames;
            const double window = 1 - std::cos(2 * std::numbers::pi * phase);
            force[frame + i] += released * window * (1 + rubbing * draws.normal());
        }
    }
    force.resize(frameCount);
    return force;
}

std::vector<double> makeCreak() {
    Draws draws;
    std::vector<Mode> body = makeBody();
    std::vector<double> creak = makeSlips(draws);
    for (double& sample : creak) {
        double sum = 0;
        for (Mode& mode : body)
            sum += mode.next(sample);
        sample = sum;
    }
    return creak;
}

void scaleToPeak(std::vector<double>& samples) {
    double peak = 0;
    for (const double sample : samples)
        peak = std::max(peak, std::abs(sample));
    for (double& sample : samples)
        sample *= peakLevel / peak;
}

void writeNumber(std::ostream& stream, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        stream.put(static_cast<char>(value >> (8U * static_cast<unsigned>(i)) & 0xFFU));
}

/// One channel of 16 bits.
bool writeWAV(const std::string& path, std::span<const double> samples) {
    std::ofstream stream(path, std::ios::binary);
    const auto rate = static_cast<std::uint32_t>(sampleRate);
    const auto dataBytes = static_cast<std::uint32_t>(samples.size() * 2);
    stream << "RIFF";
    writeNumber(stream, 36 + dataBytes, 4);
    stream << "WAVEfmt ";
    writeNumber(stream, 16, 4);
    writeNumber(stream, 1, 2);
    writeNumber(stream, 1, 2);
    writeNumber(stream, rate, 4);
    writeNumber(stream, rate * 2, 4);
    writeNumber(stream, 2, 2);
    writeNumber(stream, 16, 2);
    stream << "data";
    writeNumber(stream, dataBytes, 4);
    for (const double sample : samples)
        writeNumber(stream, static_cast<std::uint32_t>(std::lround(sample * 32767)), 2);
    return static_cast<bool>(stream.flush());
}

} // namespace

int main(int argc, char** argv) {
    const std::span arguments(argv, static_cast<std::size_t>(argc));
    if (arguments.size() != 2) {
        std::fputs("usage: creak FILE.wav\n", stderr);
        return 2;
    }
    std::vector<double> creak = makeCreak();
    scaleToPeak(creak);
    if (writeWAV(arguments[1], creak))
        return 0;
    std::fprintf(stderr, "creak: cannot write %s\n", arguments[1]);
    return 1;
}
