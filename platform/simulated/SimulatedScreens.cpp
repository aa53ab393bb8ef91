#include "platform/simulated/SimulatedScreens.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>
#include <utility>

#include "base/FatalError.h"

namespace quorvane {

namespace {

template <class... Parts>
std::string words(const Parts&... parts) {
    std::ostringstream text;
    (text << ... << parts);
    return text.str();
}

std::string rectText(const Rect& rect) {
    return words(rect.x, ",", rect.y, " ", rect.width, "x", rect.height);
}

const char* yesOrNo(bool yes) {
    return yes ? "yes" : "no";
}

class MainScreen final : public Screen {
public:
    explicit MainScreen(std::shared_ptr<std::optional<Rect>> frame) : m_frame(std::move(frame)) {}

    [[nodiscard]] Rect frame() const override { return m_frame->value_or(Rect{}); }

private:
    std::shared_ptr<std::optional<Rect>> m_frame;
};

} // namespace

class SimulatedScreens::Panel final : public OverlayPanel {
public:
    Panel(std::shared_ptr<SimulatedPanel> record, std::shared_ptr<State> state)
        : m_record(std::move(record)), m_state(std::move(state)) {}

    void setLevel(int level) override { note("level ", level); }

    void setOpaque(bool opaque) override { note("opaque ", yesOrNo(opaque)); }

    void setBackgroundColor(const Color& color) override {
        note("background ", color.red, ",", color.green, ",", color.blue, ",", color.alpha);
    }

    void setCollectionBehavior(unsigned behavior) override { note("behavior ", behavior); }

    void setIgnoresMouseEvents(bool ignores) override { note("ignores mouse ", yesOrNo(ignores)); }

    void setContentView(std::shared_ptr<const OverlayView> view) override {
        note("content view");
        m_record->view = std::move(view);
    }

    void setTimeLimit(double seconds) override { m_record->timeLimit = seconds; }

    void setFrame(const Rect& frame, bool display) override {
        note("frame ", rectText(frame), " display ", yesOrNo(display));
        m_record->frame = frame;
    }

    void orderFrontRegardless() override {
        note("front");
        move(!m_state->faults->fails(Fault::PanelFront));
    }

    void orderOut() override {
        note("out");
        move(false);
    }

private:
    template <class... Parts>
    void note(const Parts&... parts) {
        m_record->calls.push_back(words(parts...));
    }

    void move(bool shown) {
        std::erase(m_state->shown, m_record);
        if (shown)
            m_state->shown.push_back(m_record);
        m_record->shown = shown;
        if (m_state->moved)
            m_state->moved(*m_record);
    }

    std::shared_ptr<SimulatedPanel> m_record;
    std::shared_ptr<State> m_state;
};

Size SimulatedCanvas::measure(std::string_view text, const TextStyle& style, double width) {
    const double letter = style.size / 2;
    const double perLine = std::max(std::floor(width / letter), 1.0);
    Size room;
    std::istringstream lines{std::string(text)};
    double count = 0;
    for (std::string line; std::getline(lines, line);) {
        const auto letters = static_cast<double>(line.size());
        count += std::max(std::ceil(letters / perLine), 1.0);
        room.width = std::max(room.width, std::min(letters, perLine) * letter);
    }
    room.height = count * style.size * 1.2;
    return room;
}

void SimulatedCanvas::drawText(std::string_view text, const TextStyle& style, double x, double y,
                               double width) {
    const Size room = measure(text, style, width);
    texts.push_back({.text = std::string(text),
                     .style = style,
                     .room = {.x = x, .y = y, .width = room.width, .height = room.height}});
}

void SimulatedCanvas::strokeArc(double centerX, double centerY, double radius, double lineWidth,
                                double fraction, const Color& color) {
    arcs.push_back({.centerX = centerX,
                    .centerY = centerY,
                    .radius = radius,
                    .lineWidth = lineWidth,
                    .fraction = fraction,
                    .color = color});
}

const SimulatedCanvas::Text& SimulatedCanvas::textStarting(std::string_view start) const {
    const auto text = std::find_if(texts.begin(), texts.end(), [start](const Text& candidate) {
        return candidate.text.starts_with(start);
    });
    if (text == texts.end())
        fatalError("SimulatedCanvas: no text starts with \"" + std::string(start) + '"');
    return *text;
}

SimulatedScreens::SimulatedScreens(std::shared_ptr<Faults> faults)
    : m_mainFrame(std::make_shared<std::optional<Rect>>(
          Rect{.x = 0, .y = 0, .width = 1440, .height = 900})) {
    m_state->faults = std::move(faults);
}

SimulatedScreens::~SimulatedScreens() = default;

std::shared_ptr<Screen> SimulatedScreens::mainScreen() {
    if (!*m_mainFrame || m_state->faults->fails(Fault::MainScreen))
        return nullptr;
    return std::make_shared<MainScreen>(m_mainFrame);
}

std::shared_ptr<OverlayPanel> SimulatedScreens::createPanel(const Rect& contentRect,
                                                            unsigned styleMask, unsigned backing,
                                                            bool defer) {
    auto record = std::make_shared<SimulatedPanel>();
    record->frame = contentRect;
    record->calls.push_back(words("create ", rectText(contentRect), " style ", styleMask,
                                  " backing ", backing, " defer ", yesOrNo(defer)));
    m_panels.push_back(record);
    return std::make_shared<Panel>(record, m_state);
}

void SimulatedScreens::setMainScreen(std::optional<Rect> frame) {
    *m_mainFrame = frame;
}

void SimulatedScreens::forgetHiddenPanels() {
    std::erase_if(m_panels, [](const auto& panel) { return !panel->shown; });
}

void SimulatedScreens::onPanelMoved(std::function<void(const SimulatedPanel& panel)> observer) {
    m_state->moved = std::move(observer);
}

std::vector<std::shared_ptr<SimulatedPanel>> SimulatedScreens::shownPanels() const {
    return m_state->shown;
}

} // namespace quorvane
