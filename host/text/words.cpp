#include "text/words.h"

namespace vistel {

std::string_view take_word(std::string_view& text) {
    text = trimmed(text);
    std::size_t size = 0;
    while (size < text.size() && !is_blank(text[size])) ++size;
    const std::string_view word = text.substr(0, size);
    text = trimmed(text.substr(size));
    return word;
}

std::string lower_case(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return result;
}

std::string joined(const std::vector<std::string>& texts) {
    std::string result;
    for (const std::string& text : texts) {
        if (!result.empty()) result += ", ";
        result += text;
    }
    return result;
}

}  // namespace vistel
