#include "terminal/top.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "monitor/loss_text.h"
#include "network/message_view.h"
#include "network/stream_text.h"
#include "text/utf8.h"
#include "text/words.h"

namespace vistel {

namespace {

constexpr PlayTime glow = one_second;

constexpr int source_column = 8, rate_column = 12, age_column = 19, name_column = 25;
constexpr int widest_bus = 16;

std::vector<PageLine> help_lines(const std::string& problem) {
    constexpr const char* keys[][2] = {
        {"Up, Down, PgUp, PgDn", "to another stream or line"},
        {"Enter", "the message in full, and back"},
        {"/", "filter by number, name or text of a field; Enter keeps it, Escape drops it"},
        {"d, Tab", "the devices of the bus; Enter shows what one of them sends"},
        {"s", "only what this source sends, or all again"},
        {"b", "only what comes on the next bus, or on all"},
        {"o", "order: appearance, PGN, source, rate, latest"},
        {"u", "other units"},
        {"Space, p", "pause: a recording stops; of a live source the picture stands still"},
        {".", "the next message of a recording that is paused"},
        {"+, -", "a recording faster or slower"},
        {"<, >", "a recording back or on by a twentieth"},
        {"l", "what was lost, in all and by PGN and source"},
        {"c", "forget all streams"},
        {"h, ?", "this page"},
        {"q", "leave"},
    };
    std::vector<PageLine> lines;
    for (const auto& [key, what] : keys)
        lines.push_back(PageLine().add(" ").add(key, Style::strong).to_column(24).add(what));
    if (!problem.empty()) {
        lines.emplace_back();
        lines.push_back(PageLine().add(" The first error: " + problem, Style::alarm));
    }
    return lines;
}

}  // namespace

Top::Top(Player& player, std::vector<NamedUnits> units, StreamFilter filter)
    : player_(player), traffic_(player), units_(std::move(units)), filter_(std::move(filter)) {}

void Top::advance() {
    traffic_.advance();
}

void Top::pause(bool paused) {
    traffic_.pause(paused);
    rows_.clear();  // until the next page: they may be of the other picture
}

void Top::move(int lines) {
    if (view_ == View::streams) {
        cursor_ = std::clamp(cursor_ + lines, 0, std::max(0, static_cast<int>(rows_.size()) - 1));
        if (!rows_.empty()) selected_ = rows_[static_cast<std::size_t>(cursor_)]->order();
    } else if (view_ == View::devices) {
        device_cursor_ =
            std::clamp(device_cursor_ + lines, 0, std::max(0, static_cast<int>(devices_.size()) - 1));
    } else {
        scroll_ = std::max(0, scroll_ + lines);
    }
}

/// Where there are several; else empty.
std::string Top::bus_of(std::uint8_t bus) const {
    return has_several_buses() ? player_.bus_label(bus) : std::string();
}

/// Columns that the names of buses take, with a blank behind.
int Top::bus_width() const {
    int width = 0;
    for (std::size_t i = 0; i < player_.bus_count() && has_several_buses(); ++i)
        width = std::max(width, columns_of(player_.bus_label(static_cast<std::uint8_t>(i))) + 1);
    return std::min(width, widest_bus);
}

void Top::next_bus() {
    const std::size_t next = filter_.bus ? *filter_.bus + std::size_t{1} : 0;
    filter_.bus.reset();
    if (has_several_buses() && next < player_.bus_count()) filter_.bus = static_cast<std::uint8_t>(next);
}

/// Shows what the device under the cursor sends.
void Top::choose_device() {
    view_ = View::streams;
    if (devices_.empty()) return;
    const DeviceRow& device = devices_[static_cast<std::size_t>(device_cursor_)];
    if (!device.address) return;
    filter_.sources = {*device.address};
    if (has_several_buses()) filter_.bus = device.bus;
}

bool Top::press_in_filter(std::uint32_t key) {
    switch (key) {
        case key_enter: typing_ = false; break;
        case key_escape:
            typing_ = false;
            filter_.text.clear();
            break;
        case key_backspace:
            while (!filter_.text.empty() && (filter_.text.back() & 0xC0) == 0x80) filter_.text.pop_back();
            if (!filter_.text.empty()) filter_.text.pop_back();
            break;
        default:
            constexpr std::size_t longest = 60;
            if (key >= ' ' && key < key_up && key != 0x7F && filter_.text.size() < longest)
                append_utf8(filter_.text, key);
    }
    return true;
}

bool Top::press(std::uint32_t key) {
    if (typing_) return press_in_filter(key);
    constexpr double least_speed = 1.0 / 64, most_speed = 64, step = 0.05;
    const Stream* const chosen = rows_.empty() ? nullptr : rows_[static_cast<std::size_t>(cursor_)];
    switch (key) {
        case 'q': return false;
        case key_up:
        case 'k': move(-1); break;
        case key_down:
        case 'j': move(1); break;
        case key_page_up: move(-page_rows_); break;
        case key_page_down: move(page_rows_); break;
        case key_home: move(-1'000'000); break;
        case key_end: move(1'000'000); break;
        case key_enter:
            scroll_ = 0;
            if (view_ == View::devices) {
                choose_device();
                break;
            }
            view_ = view_ == View::streams && chosen != nullptr ? View::message : View::streams;
            break;
        case key_escape: view_ = View::streams; break;
        case 'h':
        case '?':
            scroll_ = 0;
            view_ = view_ == View::help ? View::streams : View::help;
            break;
        case 'd':
        case '\t': view_ = view_ == View::devices ? View::streams : View::devices; break;
        case '/': typing_ = true; break;
        case 's':
            if (!filter_.sources.empty()) {
                filter_.sources.clear();
                filter_.bus.reset();
            } else if (chosen != nullptr) {
                filter_.sources = {chosen->msg().source};
                if (has_several_buses()) filter_.bus = chosen->bus();
            }
            break;
        case 'b': next_bus(); break;
        case 'l':
            scroll_ = 0;
            view_ = view_ == View::losses ? View::streams : View::losses;
            break;
        case 'o':
            order_ =
                static_cast<StreamOrder>((static_cast<unsigned>(order_) + 1) % stream_order_names.size());
            break;
        case 'u': unit_set_ = (unit_set_ + 1) % units_.size(); break;
        case ' ':
        case 'p': pause(!player_.paused()); break;
        case '.':
            if (player_.paused() && player_.is_paced()) traffic_.step();
            break;
        case '+':
        case '-':
            if (const double now = player_.options().speed.value_or(1); player_.is_paced() && now > 0)
                player_.set_speed(std::clamp(key == '+' ? now * 2 : now / 2, least_speed, most_speed));
            break;
        case '<': traffic_.seek(player_.place() - step); break;
        case '>': traffic_.seek(player_.place() + step); break;
        case 'c':
            traffic_.clear();
            devices_.clear();
            rows_.clear();
            view_ = View::streams;
            break;
        default: break;
    }
    return true;
}

PageLine Top::status(int width) const {
    PageLine line;
    if (player_.paused()) line.add(" PAUSED", Style::alarm).add(" ·");
    if (player_.ended()) line.add(" END", Style::alarm).add(" ·");
    line.add(concat(" ", devices_.size(), devices_.size() == 1 ? " device · " : " devices · "));
    line.add(concat(rows_.size() < shown().size() ? concat(rows_.size(), " of ") : std::string(),
                    shown().size(), shown().size() == 1 ? " stream" : " streams"));
    double rate = 0;
    for (const Stream* const stream : rows_) rate += stream->rate(now());
    line.add(formatted(" · %.0f/s", rate));
    if (const auto share = traffic_.share_of_bus())
        line.add(formatted(" · %.1f %% of the ", 100 * *share) +
                 (has_several_buses() ? "busiest bus" : "bus"));
    if (player_.is_paced()) {
        if (const double speed = player_.options().speed.value_or(1); speed > 0 && speed != 1)
            line.add(formatted(" · %g times", speed));
        if (player_.can_seek()) line.add(formatted(" · at %.0f %%", 100 * player_.place()));
    }
    for (const std::string& part : losses_in_short(player_, traffic_)) line.add(" · " + part, Style::alarm);
    if (const auto& failure = traffic_.asking_failure(); !failure.empty())
        line.add(" · " + failure, Style::alarm);
    if (!player_.notice().empty()) line.add(" · " + player_.notice(), Style::alarm);
    return line.to_column(width);
}

PageLine Top::row_of(const Stream& stream, int width) const {
    const PlayTime present = now();
    const Style style = stream.is_silent(present) ? Style::faint : Style::plain;
    PageLine line;
    line.add(concat(" ", stream.msg().pgn), style).to_column(source_column);
    line.add(formatted("%3u", unsigned{stream.msg().source}), style).to_column(rate_column);
    const int shift = bus_width();
    line.add(short_bus(bus_of(stream.bus()), static_cast<std::size_t>(std::max(0, shift - 1))), style)
        .to_column(rate_column + shift);
    const auto right = [&](const std::string& text, int column) {
        line.to_column(std::max(line.width(), column - 1 - columns_of(text)))
            .add(text, style)
            .to_column(column);
    };
    right(rate_text(stream.rate(present)), age_column + shift);
    right(age_text(present - stream.seen()), name_column + shift);
    const MessageView view(stream.msg(), units(), player_.options().definitions);
    line.add(view.name(), style == Style::plain ? Style::strong : style).add("  ", style);
    const bool is_fresh = present - stream.changed() < glow && stream.count() > 1;
    line.add(summary_of(stream.msg(), units(), player_.options().definitions),
             is_fresh && style == Style::plain ? Style::changed : style);
    return line.to_column(width);
}

void Top::add_rows(Page& page, const std::vector<PageLine>& rows, int height) {
    scroll_ = std::clamp(scroll_, 0, std::max(0, static_cast<int>(rows.size()) - height));
    for (int i = scroll_; i < scroll_ + height; ++i)
        page.push_back(i < static_cast<int>(rows.size()) ? rows[static_cast<std::size_t>(i)] : PageLine());
}

void Top::add_streams(Page& page, int width, int height) {
    PageLine heading;
    heading.add(" PGN", Style::heading)
        .to_column(source_column)
        .add("Src", Style::heading)
        .to_column(rate_column);
    const int shift = bus_width();
    if (shift > 0) heading.add("Bus", Style::heading).to_column(rate_column + shift);
    heading.add("  Rate", Style::heading)
        .to_column(age_column + shift)
        .add("  Age", Style::heading)
        .to_column(name_column + shift);
    page.push_back(heading
                       .add(concat("Message (by ", stream_order_names[static_cast<std::size_t>(order_)], ")"),
                            Style::heading)
                       .to_column(width));
    page_rows_ = std::max(1, height - 1);
    first_row_ = std::clamp(first_row_, std::max(0, cursor_ - page_rows_ + 1), cursor_);
    for (int i = first_row_; i < first_row_ + page_rows_; ++i) {
        if (i >= static_cast<int>(rows_.size())) {
            page.emplace_back();
            continue;
        }
        PageLine line = row_of(*rows_[static_cast<std::size_t>(i)], width);
        if (i == cursor_) line.mark();
        page.push_back(std::move(line));
    }
}

std::string Top::device_at(std::uint8_t bus, std::uint8_t address) const {
    for (const DeviceRow& row : devices_)
        if (row.bus == bus && row.address == address) return row.title;
    return {};
}

void Top::add_devices(Page& page, int width, int height) {
    const int address_column = 1 + bus_width(), title_column = address_column + 5;
    const int rate_column = width - 46, share_column = width - 36, notes_column = width - 27;
    PageLine heading;
    if (has_several_buses()) heading.add(" Bus", Style::heading);
    heading.to_column(address_column).add("Addr", Style::heading).to_column(title_column);
    heading.add("Device", Style::heading).to_column(rate_column).add("    Rate", Style::heading);
    heading.to_column(share_column).add("    Bus", Style::heading).to_column(notes_column);
    page.push_back(std::move(heading.add(" Notes", Style::heading)));
    page_rows_ = std::max(1, height - 1);
    device_cursor_ = std::clamp(device_cursor_, 0, std::max(0, static_cast<int>(devices_.size()) - 1));
    first_device_ = std::clamp(first_device_, std::max(0, device_cursor_ - page_rows_ + 1), device_cursor_);
    for (int i = first_device_; i < first_device_ + page_rows_; ++i) {
        PageLine line;
        if (i < static_cast<int>(devices_.size())) {
            const DeviceRow& device = devices_[static_cast<std::size_t>(i)];
            line.add(" ")
                .add(short_bus(bus_of(device.bus), static_cast<std::size_t>(std::max(0, bus_width() - 1))))
                .to_column(address_column);
            line.add(device.address ? formatted("%4u", unsigned{*device.address}) : std::string("   -"));
            line.to_column(title_column).add(device.title, Style::strong).to_column(rate_column);
            line.add(formatted(" %5.1f/s", device.rate)).to_column(share_column);
            line.add(device.share ? formatted(" %5.1f %%", 100 * *device.share) : std::string("       -"));
            line.to_column(notes_column).add(" ").add(device.notes, Style::faint).to_column(width);
            if (i == device_cursor_) line.mark();
        }
        page.push_back(std::move(line));
    }
}

void Top::add_message(Page& page, int width, int height) {
    std::vector<PageLine> rows;
    const Stream& stream = *rows_[static_cast<std::size_t>(cursor_)];
    const N2KMsg& msg = stream.msg();
    const PlayTime present = now();
    MessageView view(msg, units(), player_.options().definitions);
    rows.push_back(PageLine().add(concat(" ", msg.pgn, " ", view.name()), Style::strong));
    if (const std::string device = device_at(stream.bus(), msg.source); !device.empty())
        rows.push_back(PageLine().add(" " + device));
    rows.push_back(PageLine().add(
        concat(has_several_buses() ? " bus " + bus_of(stream.bus()) + ", source " : " source ", msg.source,
               ", destination ", msg.destination, ", priority ", msg.priority, ", ", msg.length, " bytes, ",
               stream.count(), stream.count() == 1 ? " message, " : " messages, ") +
        rate_text(stream.rate(present)) + ", " + age_text(present - stream.seen()) + " ago"));
    rows.emplace_back();
    while (view.next()) {
        PageLine line;
        line.add(" ").add(view.label(), view.is_telling() ? Style::plain : Style::faint);
        const int value_column = std::min(36, width / 2);
        line.to_column(value_column - 1).add(" ");
        line.add(view.value(), view.is_telling() ? Style::strong : Style::faint);
        constexpr int raw_width = 26;
        if (width >= 76) {
            line.to_column(width - raw_width).add(" ");
            line.add(
                concat(std::to_string(view.first_bit() / 8 + 1), ".", std::to_string(view.first_bit() % 8),
                       "+", std::to_string(view.behind_bit() - view.first_bit()), "  ", view.raw()),
                Style::faint);
        }
        rows.push_back(std::move(line.to_column(width)));
    }
    if (const std::string rest = view.undecoded(); !rest.empty())
        rows.push_back(PageLine().add(" Data ").add(rest, Style::strong));
    rows.emplace_back();
    constexpr int bytes_in_row = 16;
    for (int i = 0; i < msg.length; i += bytes_in_row)
        rows.push_back(PageLine()
                           .add(formatted(" %4d  ", i), Style::faint)
                           .add(spaced_bytes(msg.data + i, std::min(bytes_in_row, msg.length - i))));
    page_rows_ = height;
    add_rows(page, rows, height);
}

std::vector<PageLine> Top::loss_lines() const {
    std::vector<PageLine> lines;
    for (const LossCount& count : loss_counts(player_, traffic_)) {
        const Style style = count.count > 0 ? Style::strong : Style::faint;
        lines.push_back(PageLine().add(" ").add(count.what, style).to_column(34));
        lines.back().add(formatted("%10llu", static_cast<unsigned long long>(count.count)), style);
    }
    const std::vector<LossRow> rows = loss_rows(player_);
    if (rows.empty()) return lines;
    lines.emplace_back();
    lines.push_back(PageLine().add("    PGN  Src   Missing     Stray  Repeated  Frames of", Style::heading));
    for (const LossRow& row : rows) {
        const auto number = [](std::uint64_t n) {
            return formatted("%10llu", static_cast<unsigned long long>(n));
        };
        PageLine line;
        if (row.pgn != 0) line.add(formatted(" %6u  %3u", row.pgn, unsigned{row.source}));
        line.to_column(12).add(number(row.missing).substr(1));
        line.add(number(row.orphans)).add(number(row.repeated)).add("  " + row.name);
        lines.push_back(std::move(line));
    }
    return lines;
}

PageLine Top::footer(int width) const {
    PageLine line;
    if (typing_) {
        line.add(" filter: ").add(filter_.text + "_", Style::strong);
    } else if (shown().size() == 0 && !player_.first_problem().empty()) {
        line.add(" " + player_.first_problem(), Style::alarm);
    } else {
        if (!filter_.text.empty()) line.add(concat(" filter: ", filter_.text, " "), Style::strong);
        if (filter_.bus) line.add(concat(" bus: ", player_.bus_label(*filter_.bus), " "), Style::strong);
        line.add(" q leave  Enter message  d devices  / filter  p pause  h help", Style::faint);
        line.add(concat("  u units: ", units_[unit_set_].name), Style::faint);
    }
    return line.to_column(width);
}

Page Top::page(int width, int height) {
    rows_ = shown().select(filter_, order_, now(), units(), player_.options().definitions);
    devices_ = traffic_.devices();
    std::erase_if(devices_,
                  [this](const DeviceRow& device) { return filter_.bus && device.bus != *filter_.bus; });
    // The cursor stays with its stream.
    const auto selected = std::ranges::find(rows_, selected_, &Stream::order);
    if (selected != rows_.end()) cursor_ = static_cast<int>(selected - rows_.begin());
    cursor_ = std::clamp(cursor_, 0, std::max(0, static_cast<int>(rows_.size()) - 1));
    if (view_ == View::message && rows_.empty()) view_ = View::streams;
    Page page;
    page.push_back(status(width));
    const int body = std::max(0, height - 2);
    switch (view_) {
        case View::streams: add_streams(page, width, body); break;
        case View::devices: add_devices(page, width, body); break;
        case View::message: add_message(page, width, body); break;
        case View::losses:
            page_rows_ = body;
            add_rows(page, loss_lines(), body);
            break;
        case View::help:
            page_rows_ = body;
            add_rows(page, help_lines(player_.first_problem()), body);
            break;
    }
    page.resize(static_cast<std::size_t>(std::max(1, height - 1)));
    page.push_back(footer(width));
    for (PageLine& line : page) line.cut(width);
    return page;
}

}  // namespace vistel
