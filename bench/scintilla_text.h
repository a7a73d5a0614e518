#pragma once

#include <cstdint>
#include <string>

#ifdef PELLUX_HAS_SCINTILLA
#include <Qsci/qsciscintillabase.h>
#endif

namespace pellux {

/// The messages of Scintilla that are used here, by their numbers.
enum class Sci : unsigned {
    add_text = 2001,
    insert_text = 2003,
    get_length = 2006,
    set_undo_collection = 2012,
    go_to = 2025,
    set_code_page = 2037,
    begin_undo = 2078,
    end_undo = 2079,
    get_line = 2153,
    line_start = 2167,
    get_direct_function = 2184,
    get_direct_pointer = 2185,
    set_target_start = 2190,
    set_target_end = 2192,
    get_target_end = 2193,
    replace_target = 2194,
    search_in_target = 2197,
    set_search_flags = 2198,
    append_text = 2282,
    set_event_mask = 2359,
    allocate = 2446,
};

/// An empty text of Scintilla in a widget that is not shown at first, told by its direct function:
/// no undo, and nobody hears of changes.
class ScintillaText {
public:
#ifdef PELLUX_HAS_SCINTILLA
    static constexpr bool k_is_installed = true;

    ScintillaText()
        : function_(reinterpret_cast<Function>(
              widget_.SendScintilla(static_cast<unsigned>(Sci::get_direct_function)))),
          pointer_(widget_.SendScintilla(static_cast<unsigned>(Sci::get_direct_pointer))) {
        constexpr std::uintptr_t k_utf8 = 65001;
        tell(Sci::set_code_page, k_utf8);
        tell(Sci::set_event_mask);
        tell(Sci::set_undo_collection);
    }
    void show(int width, int height) {
        widget_.resize(width, height);
        widget_.show();
    }
    std::intptr_t tell(Sci what, std::uintptr_t number = 0, const char* text = nullptr) {
        return function_(pointer_, static_cast<unsigned>(what), number,
                         reinterpret_cast<std::intptr_t>(text));
    }

private:
    using Function = std::intptr_t (*)(std::intptr_t pointer, unsigned message,
                                       std::uintptr_t number, std::intptr_t text);
    QsciScintillaBase widget_;
    Function function_;
    std::intptr_t pointer_;
#else
    static constexpr bool k_is_installed = false;

    void show(int, int) {}
    std::intptr_t tell(Sci, std::uintptr_t = 0, const char* = nullptr) {
        return 0;
    }
#endif
};

} // namespace pellux
