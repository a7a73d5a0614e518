#pragma once

#include "core/text/undo_record.h"

namespace pellux {

/// Texts of one size at many places, each replaced by the same other text: one record for all of
/// them, however many there are.
class ReplacedTexts : public UndoRecord {
public:
    /// `places` are those of the text before, one at least, in its order; none reaches into the
    /// next. `texts` has what stood there one after the other, or one that stood at each of them.
    ReplacedTexts(Vector<ByteOffset> places, ByteOffset bytes, String texts,
                  std::string_view replacement)
        : UndoRecord(places.front()), places_(std::move(places)), bytes_(bytes),
          texts_(std::move(texts)), replacement_(replacement) {}

    void apply(const UndoTarget& target) override;
    void apply_again(const UndoTarget& target) override;
    [[nodiscard]] bool move(TextChange& change, bool is_undone) override;

private:
    [[nodiscard]] ByteOffset growth() const {
        return static_cast<ByteOffset>(replacement_.size()) - bytes_;
    }

    Vector<ByteOffset> places_;
    ByteOffset bytes_;
    String texts_;
    String replacement_;
};

} // namespace pellux
