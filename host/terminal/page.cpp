#include "terminal/page.h"

#include <algorithm>

namespace vistel {
namespace {

bool begins_character(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
}

/// The beginning of a text that takes so many columns.
std::string_view columns(std::string_view text, int count) {
    std::size_t at = 0;
    while (at < text.size()) {
        if (begins_character(text[at]) && count-- == 0) break;
        ++at;
    }
    return text.substr(0, at);
}

}  // namespace

int columns_of(std::string_view text) {
    int count = 0;
    for (const char c : text) count += begins_character(c);
    return count;
}

std::string cut_to(std::string_view text, int count) {
    if (count <= 0) return {};
    if (columns_of(text) <= count) return std::string(text);
    return std::string(columns(text, count - 1)) + "~";
}

PageLine& PageLine::add(std::string_view text, Style style) {
    if (text.empty()) return *this;
    width_ += columns_of(text);
    if (!pieces_.empty() && pieces_.back().style == style) {
        pieces_.back().text += text;
    } else {
        pieces_.push_back({std::string(text), style});
    }
    return *this;
}

PageLine& PageLine::to_column(int column) {
    if (width_ < column) return add(std::string(static_cast<std::size_t>(column - width_), ' '));
    return cut(column);
}

PageLine& PageLine::cut(int column) {
    while (width_ > std::max(column, 0)) {
        Piece& last = pieces_.back();
        const int before = width_ - columns_of(last.text);
        if (before >= column) {
            pieces_.pop_back();
            width_ = before;
        } else {
            last.text = cut_to(last.text, column - before);
            width_ = column;
        }
    }
    return *this;
}

void PageLine::mark() {
    for (Piece& piece : pieces_) piece.style = Style::marked;
}

std::string PageLine::text() const {
    std::string all;
    for (const Piece& piece : pieces_) all += piece.text;
    return all;
}

}  // namespace vistel
