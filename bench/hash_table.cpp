#include "core/common/hash_table.h"
#include "bench/ratio.h"

#include <cstdint>
#include <random>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace {

using namespace pellux;

/// Distinct identifiers as designs have them: words joined by '_', some with a number.
std::vector<std::string> make_identifiers(std::size_t count) {
    static constexpr const char* k_words[] = {
        "clk",   "rst",   "data",   "addr", "valid", "ready", "fifo", "count",  "state", "next",
        "write", "read",  "enable", "in",   "out",   "bus",   "mux",  "alu",    "reg",   "carry",
        "shift", "timer", "uart",   "tx",   "rx",    "ram",   "ctrl", "decode", "fetch", "stage",
    };
    std::mt19937 random(42);
    std::vector<std::string> names;
    std::unordered_set<std::string> known;
    while (names.size() < count) {
        std::string name = k_words[random() % std::size(k_words)];
        for (std::size_t more = random() % 3; more != 0; --more)
            name += std::string("_") + k_words[random() % std::size(k_words)];
        if (random() % 4 == 0)
            name += std::to_string(random() % 32);
        if (known.insert(name).second)
            names.push_back(name);
    }
    return names;
}

} // namespace

int main(int argument_count, char** arguments) {
    constexpr std::size_t k_keys = 400;
    constexpr std::size_t k_lookups = 8192;
    const std::vector<std::string> names = make_identifiers(2 * k_keys);
    HashTable table = create(512, 1);
    std::unordered_map<std::string, void*> map(512);
    for (std::size_t i = 0; i < k_keys; ++i) {
        void* value = const_cast<std::string*>(&names[i]);
        insert(table, names[i].c_str(), value);
        map.emplace(names[i], value);
    }
    // The first half of the names is in both, so that about every other look-up misses.
    std::mt19937 random(3);
    std::vector<const std::string*> lookups(k_lookups);
    for (const std::string*& lookup : lookups)
        lookup = &names[random() % names.size()];

    const RatioRow row{.name = "hash table find",
                       .yardstick = "unordered_map",
                       .units = static_cast<double>(lookups.size()),
                       .reach = 1.0};
    compare(
        row, is_moment(argument_count, arguments),
        [&] {
            for (const std::string* name : lookups) {
                const auto found = map.find(*name);
                void* value = found != map.end() ? found->second : nullptr;
                benchmark::DoNotOptimize(value);
            }
        },
        [&] {
            for (const std::string* name : lookups) {
                void* value = find(table, name->c_str());
                benchmark::DoNotOptimize(value);
            }
        });
    destroy(table, 1);
}
