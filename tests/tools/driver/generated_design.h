#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace pellux::test {

/// A random design of packages, bodies, entities, architectures, configurations, contexts and
/// generic packages in two libraries, good and bad, which random edits change.
class GeneratedDesign {
public:
    explicit GeneratedDesign(unsigned seed) : random_(seed) {
        const int count = 4 + below(5);
        while (static_cast<int>(files_.size()) < count)
            add_file();
    }

    /// Writes what changed into `directory`; what the design does not hold any more goes.
    void write(const std::filesystem::path& directory) const {
        for (const auto& entry : std::filesystem::directory_iterator(directory)) {
            const std::string name = entry.path().filename();
            if (name.ends_with(".vhd") &&
                std::none_of(files_.begin(), files_.end(),
                             [&](const File& f) { return f.name == name; }))
                std::filesystem::remove(entry.path());
        }
        for (const File& file : files_) {
            std::ofstream out(directory / file.name);
            for (const Part& one : file.parts)
                out << text(file, one);
        }
    }

    /// The driver's words for the sources in their order, the last one the top design.
    [[nodiscard]] std::vector<std::string> words() const {
        std::vector<std::string> words{vhdl_93_ ? "-v93" : "-v8"};
        for (std::size_t i = 0; i + 1 < files_.size(); ++i) {
            words.push_back("-a" + files_[i].library);
            words.push_back(files_[i].name);
        }
        words.insert(words.end(), {"-b", files_.back().name});
        return words;
    }

    /// Is a unit in two files of a library? Then the first of them is compiled every time.
    [[nodiscard]] bool has_unit_twice() const {
        std::set<std::tuple<std::string, Kind, int>> units;
        for (const File& file : files_) {
            for (const Part& part : file.parts) {
                if (!units.emplace(file.library, part.kind, part.id).second)
                    return true;
            }
        }
        return false;
    }

    /// One edit, told in a word.
    std::string edit() {
        File& file = files_[index(files_.size())];
        Part& part = file.parts[index(file.parts.size())];
        switch (below(10)) {
        case 0:
            ++part.comment;
            return "comment in " + file.name;
        case 1:
        case 2:
            ++part.value;
            return "value in " + file.name;
        case 3:
            part.broken = !part.broken;
            return "fault in " + file.name;
        case 4:
            part.uses = some(packages_);
            part.instances = some(entities_);
            return "names in " + file.name;
        case 5:
            if (files_.size() < 3)
                break;
            files_.erase(files_.begin() + below(static_cast<int>(files_.size()) - 1));
            return "a file removed";
        case 6:
            file.name = "f" + std::to_string(++names_) + ".vhd";
            return "renamed to " + file.name;
        case 7:
            std::swap(files_[index(files_.size() - 1)], files_[index(files_.size() - 1)]);
            return "order";
        case 8:
            vhdl_93_ = below(4) == 0;
            return "standard";
        default:
            break;
        }
        add_file();
        return "a file added";
    }

private:
    enum class Kind {
        package,
        body,
        entity,
        architecture,
        configuration,
        context,
        generic,
        instance
    };
    struct Part {
        Kind kind;
        int id;
        int value = 1;
        int comment = 0;
        bool broken = false;
        std::vector<int> uses;      ///< packages
        std::vector<int> instances; ///< entities
    };
    struct File {
        std::string name;
        std::string library;
        std::vector<Part> parts;
    };

    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    std::size_t index(std::size_t size) { return random_() % size; }
    std::vector<int> some(const std::vector<std::string>& all) {
        const int known = static_cast<int>(all.size());
        std::vector<int> ids;
        for (int i = below(3); i > 0 && known > 0; --i)
            ids.push_back(1 + below(known + (below(20) == 0 ? 1 : 0)));
        return ids;
    }
    Part part(Kind kind, int id) {
        return {kind, id, 1, 0, false, some(packages_), some(entities_)};
    }

    void add_file() {
        constexpr Kind k_pairs[][2] = {{Kind::package, Kind::body},
                                       {Kind::entity, Kind::architecture},
                                       {Kind::generic, Kind::instance}};
        // The last file is the top design, which is always compiled into "work".
        const auto place = files_.empty() ? files_.end() : files_.end() - below(2);
        const bool is_in_work = place == files_.end() || below(3) > 0;
        File file{"f" + std::to_string(++names_) + ".vhd", is_in_work ? "work" : "alib", {}};
        for (int i = 1 + below(2); i > 0; --i) {
            const bool apart = below(4) == 0 && file.library == "work";
            const int choice = below(6);
            if (choice == 4) {
                file.parts.push_back(part(below(2) == 0 ? Kind::configuration : Kind::context,
                                          1 + below(static_cast<int>(entities_.size()) + 1)));
                continue;
            }
            const auto& [first, second] = k_pairs[choice / 2];
            std::vector<std::string>& libraries = first == Kind::entity ? entities_ : packages_;
            const int id = static_cast<int>(libraries.size()) + 1;
            file.parts.push_back(part(first, id));
            (apart && choice < 4 ? waiting_ : file.parts).push_back(part(second, id));
            libraries.push_back(file.library);
        }
        if (!waiting_.empty() && below(2) == 0 && file.library == "work") {
            file.parts.push_back(waiting_.back());
            waiting_.pop_back();
        }
        files_.insert(place, file);
    }

    static std::string library_of(const std::vector<std::string>& libraries, int id,
                                  const File& file) {
        const auto place = static_cast<std::size_t>(id) - 1;
        const std::string library = place < libraries.size() ? libraries[place] : "work";
        return library == file.library ? "work" : library == "work" ? "elsewhere" : library;
    }

    [[nodiscard]] std::string text(const File& file, const Part& one) const {
        // By kind; the first body warns of the value 1. @: the number, #: the value, $: the value
        // and what is used, *: the components, !: their instances.
        constexpr const char* k_texts[] = {
            "package p@ is\n  constant c@ : integer := $;\n  function g@ return integer;\nend;\n",
            "package body p@ is\n  function g@ return integer is\n"
            "  variable v : integer range 2 to 9 := #; begin return v; end;\nend;\n",
            "entity e@ is generic (n : integer := $); end;\n",
            "architecture rtl of e@ is\n*  signal s : integer := $;\nbegin\n!end;\n",
            "configuration k@ of e@ is for rtl end for; end;\n",
            "context x@ is library alib; end;\n",
            "package p@ is\n  generic (n : integer := $);\n  constant c@ : integer := n;\n"
            "  function g@ return integer;\nend;\npackage body p@ is\n"
            "  function g@ return integer is begin return n + #; end;\nend;\n",
            "package q@ is new work.p@ generic map (n => #);\n"};
        std::map<char, std::string> parts{{'@', std::to_string(one.id)},
                                          {'#', std::to_string(one.value)},
                                          {'$', std::to_string(one.value)}};
        std::string all = "-- " + std::string(static_cast<std::size_t>(one.comment), 'c') + "\n";
        const bool is_secondary = one.kind == Kind::body || one.kind == Kind::context;
        for (const int use : one.uses) {
            const std::string library = library_of(packages_, use, file);
            if (is_secondary || one.kind == Kind::instance || use == one.id)
                continue;
            if (library != "work")
                all += "library " + library + ";\n";
            all += "use " + library + ".p" + std::to_string(use) + ".all;\n";
            parts['$'] += " + c" + std::to_string(use);
        }
        for (int label = 0; const int used : one.instances) {
            const std::string name = "e" + std::to_string(used);
            const bool is_direct = used % 2 == 0 && used != one.id;
            parts['!'] += "  u" + std::to_string(++label) + " : " +
                          (is_direct ? "entity " + library_of(entities_, used, file) + "." + name
                                     : "component " + name) +
                          ";\n";
            if (parts['*'].find(name + " ") == std::string::npos)
                parts['*'] += "  component " + name + " is end component;\n";
        }
        all += one.broken ? "fault " : "";
        for (const char c : std::string_view(k_texts[static_cast<std::size_t>(one.kind)]))
            all += std::string_view("@#$*!").find(c) == std::string_view::npos ? std::string(1, c)
                                                                               : parts[c];
        return all;
    }

    std::mt19937 random_;
    std::vector<File> files_;
    std::vector<Part> waiting_;         ///< secondary units for another file
    std::vector<std::string> packages_; ///< the library of each, which count from 1
    std::vector<std::string> entities_; ///< the same
    int names_ = 0;
    bool vhdl_93_ = false;
};

} // namespace pellux::test
