#pragma once

#include "tests/windows/textview/text_state.h"
#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/event_log.h"
#include "tests/windows/toolkit/robot.h"
#include "windows/textview/text_window.h"

#include <string>

namespace pellux {

/// A window with a text, and the words that it has for its user.
class Page : public TextWindow {
public:
    explicit Page(std::string_view text = {}, TextEncoding encoding = TextEncoding::utf_8) {
        document().encoding = encoding;
        insert_bytes(document(), 0, text);
        xvt_win_create_res(k_test_window, {handle, this});
        process_events();
    }
    ~Page() override { xvt_vobj_destroy(window()); }

    [[nodiscard]] TextEditing& editing() { return view().editing; }
    [[nodiscard]] std::string state() { return text_state(editing()); }
    [[nodiscard]] Window pane() { return view().target; }
    /// The middle of the left edge of a character.
    [[nodiscard]] Point at(ByteOffset offset) {
        const Rect place = place_of(view(), offset);
        return {place.left, (place.top + place.bottom) / 2};
    }

    std::string words;

protected:
    void show_words(std::string_view told) override { words = told; }
};

} // namespace pellux
