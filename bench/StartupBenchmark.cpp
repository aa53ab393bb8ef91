// Starts the program and a bare Qt window in turn on an empty X server, and prints how long each
// takes from the start of the process to its first frame and how much memory it then has. The first
// frame is there when the middle of the window no longer has the root window's colour.

#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "base/NonCopyable.h"
#include "bench/Row.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint16_t windowWidth = 550;
constexpr std::uint16_t windowHeight = 780;
// A colour that is on no screen of either program.
constexpr std::uint32_t rootColor = 0x00FF00FF;
constexpr auto lookInterval = std::chrono::microseconds(500);
constexpr auto timeout = std::chrono::seconds(20);
// Long enough for what a program still does after its first frame.
constexpr auto settlingTime = std::chrono::seconds(3);

struct Sample {
    double milliseconds = 0;
    double megabytes = 0;
};

template <class Reply>
using ReplyPointer = std::unique_ptr<Reply, decltype(&std::free)>;

template <class Reply>
ReplyPointer<Reply> owned(Reply* reply) {
    return {reply, &std::free};
}

class Display : quorvane::NonCopyable {
public:
    Display() : m_connection(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(m_connection)) {
            std::fputs("StartupBenchmark: there is no X server\n", stderr);
            std::exit(EXIT_FAILURE);
        }
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        xcb_change_window_attributes(m_connection, m_root, XCB_CW_BACK_PIXEL, &rootColor);
        xcb_flush(m_connection);
    }

    ~Display() { xcb_disconnect(m_connection); }

    // Removes the pixels of earlier windows, which could be taken for a frame.
    void paintRoot() {
        xcb_clear_area(m_connection, 0, m_root, 0, 0, 0, 0);
        xcb_flush(m_connection);
    }

    [[nodiscard]] bool showsFrame() {
        const std::optional<xcb_window_t> window = findWindow();
        if (!window)
            return false;
        const auto image = owned(
            xcb_get_image_reply(m_connection,
                                xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, *window,
                                              windowWidth / 2, windowHeight / 2, 1, 1, 0x00FFFFFF),
                                nullptr));
        if (!image)
            return false;
        const std::span data(xcb_get_image_data(image.get()), 4);
        return data[0] != (rootColor & 0xFFU) || data[1] != ((rootColor >> 8U) & 0xFFU) ||
               data[2] != ((rootColor >> 16U) & 0xFFU);
    }

private:
    [[nodiscard]] bool isViewableAndOfOurSize(xcb_window_t window) {
        const auto size = owned(
            xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr));
        const auto state = owned(xcb_get_window_attributes_reply(
            m_connection, xcb_get_window_attributes(m_connection, window), nullptr));
        return size && state && size->width == windowWidth && size->height == windowHeight &&
               state->map_state == XCB_MAP_STATE_VIEWABLE;
    }

    [[nodiscard]] std::optional<xcb_window_t> findWindow() {
        const auto tree = owned(
            xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, m_root), nullptr));
        if (!tree)
            return std::nullopt;
        const std::span children(
            xcb_query_tree_children(tree.get()),
            static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
        const auto found = std::find_if(children.begin(), children.end(), [this](auto window) {
            return isViewableAndOfOurSize(window);
        });
        return found == children.end() ? std::nullopt : std::optional(*found);
    }

    xcb_connection_t* m_connection;
    xcb_window_t m_root = 0;
};

pid_t start(const char* program) {
    const pid_t process = fork();
    if (process != 0)
        return process;
    execl(program, program, nullptr);
    std::perror(program);
    _exit(127);
}

// Proportional set size: shared pages are counted by their share.
double proportionalMegabytes(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("Pss:"))
            return std::stod(line.substr(4)) / 1024;
    }
    return 0;
}

void end(pid_t process) {
    kill(process, SIGTERM);
    waitpid(process, nullptr, 0);
}

Sample measure(Display& display, const char* program) {
    display.paintRoot();
    const auto begin = Clock::now();
    const pid_t process = start(program);
    while (!display.showsFrame()) {
        if (Clock::now() - begin > timeout || waitpid(process, nullptr, WNOHANG) != 0) {
            std::fprintf(stderr, "StartupBenchmark: %s shows no window\n", program);
            end(process);
            std::exit(EXIT_FAILURE);
        }
        std::this_thread::sleep_for(lookInterval);
    }
    const std::chrono::duration<double, std::milli> elapsed = Clock::now() - begin;
    std::this_thread::sleep_for(settlingTime);
    const Sample sample{.milliseconds = elapsed.count(),
                        .megabytes = proportionalMegabytes(process)};
    end(process);
    return sample;
}

double median(const std::vector<Sample>& samples, double Sample::*field) {
    std::vector<double> values;
    values.reserve(samples.size());
    for (const Sample& sample : samples)
        values.push_back(sample.*field);
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fputs("usage: startup_benchmark PROGRAM BARE_WINDOW REPETITIONS\n", stderr);
        return 2;
    }
    const int repetitions = std::max(1, std::atoi(argv[3]));
    Display display;
    // The first start of each only fills the disk cache.
    measure(display, argv[1]);
    measure(display, argv[2]);
    std::vector<Sample> program;
    std::vector<Sample> bare;
    for (int i = 0; i < repetitions; ++i) {
        program.push_back(measure(display, argv[1]));
        bare.push_back(measure(display, argv[2]));
    }
    std::printf("Medians of %d starts each, in turn:\n", repetitions);
    quorvane::printRow("process start to frame", median(program, &Sample::milliseconds),
                       "bare window", median(bare, &Sample::milliseconds), "ms");
    quorvane::printRow("memory at rest (PSS)", median(program, &Sample::megabytes), "bare window",
                       median(bare, &Sample::megabytes), "MB");
}
