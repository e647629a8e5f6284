#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vistel {

/// How a piece of a line looks.
enum class Style : std::uint8_t { plain, strong, faint, changed, marked, heading, alarm };

/// A line of a page: pieces of UTF-8 text, each with its style.
class PageLine {
  public:
    PageLine& add(std::string_view text, Style style = Style::plain);
    /// Fills up with blanks to a column, or cuts off what is beyond it.
    PageLine& to_column(int column);
    PageLine& cut(int column);
    /// The whole line in one style, as that under a cursor.
    void mark();

    struct Piece {
        std::string text;
        Style style;
    };
    const std::vector<Piece>& pieces() const { return pieces_; }
    int width() const { return width_; }
    /// Without styles.
    std::string text() const;

  private:
    std::vector<Piece> pieces_;
    int width_ = 0;
};

/// What a terminal shows, from the top.
using Page = std::vector<PageLine>;

/// Columns that a text takes: one for each character, as all those of units and names do.
int columns_of(std::string_view text);

/// The beginning of a text, at most `count` columns; of one that is cut the last is "~".
std::string cut_to(std::string_view text, int count);

}  // namespace vistel
