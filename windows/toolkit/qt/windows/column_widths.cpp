#include "windows/toolkit/qt/windows/column_widths.h"

#include <algorithm>
#include <numeric>

namespace pellux {
namespace {

Vector<int> widths_up_to(std::span<const ColumnWish> wishes, int limit) {
    Vector<int> widths;
    for (const ColumnWish& wish : wishes)
        widths.push_back(std::max(wish.least, std::min(wish.natural, limit)));
    return widths;
}

int sum_of(const Vector<int>& widths) {
    return std::accumulate(widths.begin(), widths.end(), 0);
}

} // namespace

Vector<int> fit_columns(std::span<const ColumnWish> wishes, int room) {
    if (wishes.empty())
        return {};
    int fitting = 0;
    for (int over = std::ranges::max_element(wishes, {}, &ColumnWish::natural)->natural + 1;
         over - fitting > 1;) {
        const int middle = fitting + (over - fitting) / 2;
        (sum_of(widths_up_to(wishes, middle)) <= room ? fitting : over) = middle;
    }
    Vector<int> widths = widths_up_to(wishes, fitting);
    widths.back() += std::max(0, room - sum_of(widths));
    return widths;
}

} // namespace pellux
