#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <string>
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
        for (const File& file : files_)
            std::ofstream(directory / file.name) << text(file);
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
    std::vector<int> some(int known) {
        std::vector<int> ids;
        for (int i = below(3); i > 0 && known > 0; --i)
            ids.push_back(1 + below(known + (below(20) == 0 ? 1 : 0)));
        return ids;
    }
    Part part(Kind kind, int id) {
        return {kind, id, 1, 0, false, some(packages_), some(entities_)};
    }

    void add_parts(std::vector<Part>& parts, Kind first, Kind second, int id, bool apart) {
        parts.push_back(part(first, id));
        if (!apart)
            parts.push_back(part(second, id));
        else
            waiting_.push_back(part(second, id));
    }

    void add_file() {
        // The last file is the top design, which is always compiled into "work".
        const auto place = files_.empty() ? files_.end() : files_.end() - below(2);
        const bool is_in_work = place == files_.end() || below(3) > 0;
        File file{"f" + std::to_string(++names_) + ".vhd", is_in_work ? "work" : "alib", {}};
        for (int i = 1 + below(2); i > 0; --i) {
            const bool apart = below(4) == 0 && file.library == "work";
            switch (below(6)) {
            case 0:
            case 1:
                add_parts(file.parts, Kind::package, Kind::body, packages_ + 1, apart);
                libraries_.resize(static_cast<std::size_t>(++packages_) + 1);
                libraries_.back() = file.library;
                break;
            case 2:
            case 3:
                add_parts(file.parts, Kind::entity, Kind::architecture, entities_ + 1, apart);
                entity_libraries_.resize(static_cast<std::size_t>(++entities_) + 1);
                entity_libraries_.back() = file.library;
                break;
            case 4:
                file.parts.push_back(part(below(2) == 0 ? Kind::configuration : Kind::context,
                                          1 + below(entities_ + 1)));
                break;
            default:
                file.parts.push_back(part(Kind::generic, packages_ + 1));
                file.parts.push_back(part(Kind::instance, packages_ + 1));
                libraries_.resize(static_cast<std::size_t>(++packages_) + 1);
                libraries_.back() = file.library;
                break;
            }
        }
        if (!waiting_.empty() && below(2) == 0 && file.library == "work") {
            file.parts.push_back(waiting_.back());
            waiting_.pop_back();
        }
        files_.insert(place, file);
    }

    static std::string library_of(const std::vector<std::string>& libraries, int id,
                                  const File& file) {
        const auto place = static_cast<std::size_t>(id);
        const std::string library = place < libraries.size() ? libraries[place] : "work";
        return library == file.library ? "work" : library == "work" ? "elsewhere" : library;
    }

    [[nodiscard]] std::string text(const File& file) const {
        std::string all;
        for (const Part& one : file.parts)
            all += text(file, one);
        return all;
    }

    [[nodiscard]] std::string text(const File& file, const Part& one) const {
        const std::string id = std::to_string(one.id);
        const std::string value = std::to_string(one.value);
        std::string head = "-- " + std::string(static_cast<std::size_t>(one.comment), 'c') + "\n";
        std::string sum = value;
        const bool is_secondary = one.kind == Kind::body || one.kind == Kind::context;
        for (const int use : one.uses) {
            const std::string library = library_of(libraries_, use, file);
            if (is_secondary || one.kind == Kind::instance || use == one.id)
                continue;
            if (library != "work")
                head += "library " + library + ";\n";
            head += "use " + library + ".p" + std::to_string(use) + ".all;\n";
            sum += " + c" + std::to_string(use);
        }
        if (one.broken)
            head += "fault ";
        std::string units;
        int label = 0;
        for (const int used : one.instances) {
            const std::string name = "e" + std::to_string(used);
            const bool is_direct = used % 2 == 0 && used != one.id;
            units += "  u" + std::to_string(++label) + " : " +
                     (is_direct ? "entity " + library_of(entity_libraries_, used, file) + "." + name
                                : "component " + name) +
                     ";\n";
        }
        switch (one.kind) {
        case Kind::package:
            return head + "package p" + id + " is\n  constant c" + id + " : integer := " + sum +
                   ";\n  function g" + id + " return integer;\nend;\n";
        case Kind::body:
            return head + "package body p" + id + " is\n  function g" + id +
                   " return integer is begin return " + value + "; end;\nend;\n";
        case Kind::entity:
            return head + "entity e" + id + " is generic (n : integer := " + sum + "); end;\n";
        case Kind::architecture: {
            std::string components;
            for (const int used : one.instances)
                if (components.find("e" + std::to_string(used) + " ") == std::string::npos)
                    components += "  component e" + std::to_string(used) + " is end component;\n";
            return head + "architecture rtl of e" + id + " is\n" + components +
                   "  signal s : integer := " + sum + ";\nbegin\n" + units + "end;\n";
        }
        case Kind::configuration:
            return head + "configuration k" + id + " of e" + id + " is for rtl end for; end;\n";
        case Kind::context:
            return head + "context x" + id + " is library alib; end;\n";
        case Kind::generic:
            return head + "package p" + id + " is\n  generic (n : integer := " + sum +
                   ");\n  constant c" + id + " : integer := n;\n  function g" + id +
                   " return integer;\nend;\npackage body p" + id + " is\n  function g" + id +
                   " return integer is begin return n + " + value + "; end;\nend;\n";
        case Kind::instance:
            break;
        }
        return head + "package q" + id + " is new work.p" + id + " generic map (n => " + value +
               ");\n";
    }

    std::mt19937 random_;
    std::vector<File> files_;
    std::vector<Part> waiting_; ///< secondary units for another file
    std::vector<std::string> libraries_;
    std::vector<std::string> entity_libraries_;
    int packages_ = 0;
    int entities_ = 0;
    int names_ = 0;
    bool vhdl_93_ = false;
};

} // namespace pellux::test
