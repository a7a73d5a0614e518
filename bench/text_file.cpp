// A text of 100 MB from a file and into one, and the memory that it takes.

#include "bench/large_text.h"
#include "core/text/text_storage.h"

#include <benchmark/benchmark.h>

#include <QApplication>

#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using namespace pellux;

/// A directory for large files, in memory if there is room: what is written there needs no flush.
struct Place {
    std::string path;
    bool is_memory = false;

    explicit Place(std::size_t bytes) {
        struct statvfs room {};
        is_memory = ::statvfs("/dev/shm", &room) == 0 && room.f_bavail * room.f_frsize > bytes;
        path = is_memory ? "/dev/shm/pellux-bench-XXXXXX" : "/tmp/pellux-bench-XXXXXX";
        if (::mkdtemp(path.data()) == nullptr)
            std::exit(1);
    }
    ~Place() {
        for (const char* name : {"/text.vhd", "/ours.vhd", "/bare.vhd"})
            ::unlink((path + name).c_str());
        ::rmdir(path.c_str());
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
};

int open_new(const std::string& path) {
    return ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
}

void write_bare(const std::string& path, const std::string& bytes) {
    const int file = open_new(path);
    benchmark::DoNotOptimize(::write(file, bytes.data(), bytes.size()));
    ::close(file);
}

double committed_bytes() {
    return static_cast<double>(allocatorStatistics().chunk_bytes);
}

/// First of all, as the allocator keeps what it has had.
void measure_memory(const std::string& path) {
    const double before = committed_bytes();
    TextDocument document;
    const auto show = [&](const char* when, double reach) {
        const auto bytes = static_cast<double>(text_size(document));
        std::printf("memory of a text of %.0f MB %s: %.2f bytes for each byte (reach %.2f)\n",
                    bytes / 1e6, when, (committed_bytes() - before) / bytes, reach);
    };
    if (failed(load_text(document, path, TextEncoding::utf_8).error))
        std::exit(1);
    show("after loading", 1.7);
    insert_all(document,
               random_numbers(static_cast<int>(text_size(document) / 100), text_size(document)));
    show("after scattered insertions", 3.3);
}

void measure_loading(const std::string& path, std::size_t bytes, bool moment) {
    compare_with_scintilla(
        {.name = "load a large file", .reach = 0.7}, moment,
        [&] {
            ScintillaText text;
            return time_of([&] {
                text.tell(Sci::allocate, bytes + 1);
                std::vector<char> part(256 << 10);
                const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
                for (ssize_t got = 0; (got = ::read(file, part.data(), part.size())) > 0;)
                    text.tell(Sci::append_text, static_cast<std::size_t>(got), part.data());
                ::close(file);
                benchmark::DoNotOptimize(text.tell(Sci::line_start, bytes / 80));
            });
        },
        [&] {
            TextDocument document;
            return time_of([&] {
                static_cast<void>(load_text(document, path, TextEncoding::utf_8));
                benchmark::DoNotOptimize(
                    line_start(document, static_cast<std::int64_t>(bytes / 80)));
            });
        });
}

void measure_writing(const Place& place, const std::string& large, bool moment) {
    if (!place.is_memory) {
        std::printf("written, the flush apart: needs more room in /dev/shm\n");
        return;
    }
    TextDocument document;
    fill(document, large);
    compare(
        {.name = "a large text written, the flush apart",
         .yardstick = "one write",
         .reach = 1.5,
         .round_ms = 0},
        moment, [&] { write_bare(place.path + "/bare.vhd", large); },
        [&] {
            SafeWriter writer;
            if (failed(save_text(document, place.path + "/ours.vhd", writer)))
                std::exit(1);
        });
}

} // namespace

int main(int argument_count, char** arguments) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    const QApplication application(argument_count, arguments);
    const bool moment = is_moment(argument_count, arguments);
    const std::string text = make_text(moment ? 5'000'000 : 100'000'000);
    const Place place(4 * text.size());
    const std::string path = place.path + "/text.vhd";
    write_bare(path, text);
    measure_memory(path);
    measure_loading(path, text.size(), moment);
    measure_writing(place, text, moment);
    return 0;
}
