#include "core/devices/device_choices.h"

#include "tests/support/captured_reports.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <string>

namespace pellux {
namespace {

/// "device(family): package/pins/signals ...; "
std::string shown(const DeviceChoices& choices) {
    String text;
    for (const DeviceChoice& device : choices.devices) {
        text += device.name + "(" + device.family + "):";
        for (const PackageChoice& package : device.packages)
            text += " " + package.name + "/" + package.pins + "/" + package.signals;
        text += "; ";
    }
    return text.c_str();
}

class Choices : public testing::Test, protected test::CapturedReports {
protected:
    DeviceChoices read(std::string_view bytes) {
        directory_.write("tree/bin/devices.dat", bytes);
        return read_device_choices();
    }

    Scratch directory_;
    test::ScopedVariable install_{"VELMORA_DIR", "tree"};
};

TEST_F(Choices, AreWhatTheCatalogueHasHoweverDamaged) {
    EXPECT_EQ(read_device_choices().status, CatalogueStatus::no_file);
    const std::string body = "begin attributes\n kind two\t words \nspeed 1\nend attributes\n"
                             "begin packages\n p44 44 32\n\n bare\nend packages\n";
    const std::string size = std::to_string(body.size());
    const std::string whole = "seek: other:0,1 c1:0," + size + " C2:0,0\n" + body;
    const struct {
        std::string file;
        CatalogueStatus status;
        const char* choices;
    } rows[] = {
        {whole, CatalogueStatus::done, "c1(two words): p44/44/32 bare//; C2():; "},
        {"seek: a:0,0\n", CatalogueStatus::done, ""},
        {"", CatalogueStatus::no_index, ""},
        {"seek: c1:0,9999 c2:0," + size + "\n" + body, CatalogueStatus::bad_entry,
         "c1():; c2(two words): p44/44/32 bare//; "},
        {"seek: c1:0,0 c1:0,0\n", CatalogueStatus::listed_twice, "c1():; "},
        {"seek: c1:0,15\nbegin packages\n", CatalogueStatus::no_block_end, "c1():; "},
    };
    for (const auto& row : rows) {
        const DeviceChoices choices = read(row.file);
        EXPECT_EQ(choices.status, row.status) << row.file;
        EXPECT_EQ(shown(choices), row.choices) << row.file;
    }
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_LE(read(whole.substr(0, length)).devices.size(), 2u) << length;
    EXPECT_TRUE(said_.empty()) << "nobody is told, and the program goes on";
}

} // namespace
} // namespace pellux
