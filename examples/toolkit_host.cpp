// A wxWidgets program with the monitor dialog and a unit dialog of its own: toolkit_host [SECONDS].
//
// A timer stands for what the program measures itself, a thread for its gateway.

#include <wx/app.h>
#include <wx/button.h>
#include <wx/sizer.h>
#include <wx/timer.h>
#include <wx/treectrl.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "made_up_traffic.h"
#include "pgn_vistel/core/ids.h"
#include "pgn_vistel/pgn_dlg.h"
#include "pgn_vistel/unit_dlg.h"

namespace {

using namespace pgn_vistel::core;

QV_N2K_PGN_DB_c db;     // a database of its own: the units that users choose here hold here only
int units_applied = 0;  // the callback has no context

class Host : public wxFrame {
  public:
    explicit Host(double seconds);
    ~Host() override;

  private:
    void receive(std::stop_token stop);
    void show(N2KMsg msg);
    void change_unit();
    void report();

    int monitor_created_ = 0;  // 1 while the dialog exists, whoever deletes it
    PGN_VistelDlg_c* monitor_;
    PGN_VistelUnitDlg_c* units_;
    wxTimer measuring_, end_;
    std::uint32_t measured_ = 0;
    int shown_ = 0, paused_ = 0, refused_ = 0;
    std::jthread receiver_;
};

Host::Host(double seconds) : wxFrame(nullptr, wxID_ANY, "Chart Table"), measuring_(this), end_(this) {
    constexpr unsigned long most_streams = 200;
    constexpr unsigned long flags = 2;  // numbers without their hexadecimal form
    monitor_ = new PGN_VistelDlg_c(this, &db, &monitor_created_, most_streams, flags);
    units_ = new PGN_VistelUnitDlg_c(this, &db, 0);
    units_->AssignUnitChangeApply([] { ++units_applied; });  // a real host would store the choice

    auto* const row = new wxBoxSizer(wxHORIZONTAL);
    const auto add_button = [&](const char* label, auto act) {
        auto* const button = new wxButton(this, wxID_ANY, label);
        button->Bind(wxEVT_BUTTON, [act](wxCommandEvent&) { act(); });
        row->Add(button);
    };
    add_button("Monitor", [this] { monitor_->Show(); });  // its close button only hides it
    add_button("Units", [this] { units_->Show(); });
    add_button("Knots or m/s", [this] { change_unit(); });
    SetSizerAndFit(row);

    measuring_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { show(made_up::traffic(measured_++)); });
    measuring_.SetOwner(&measuring_);
    measuring_.Start(50);
    receiver_ = std::jthread([this](std::stop_token stop) { receive(stop); });
    if (seconds > 0) {
        end_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { Close(); });
        end_.SetOwner(&end_);
        end_.StartOnce(static_cast<int>(1000 * seconds));
    }
    monitor_->Show();
}

Host::~Host() {
    receiver_ = {};  // stops and waits: afterwards nobody hands this window anything
    change_unit();
    report();
    delete units_;
    delete monitor_;
    std::printf("deleted, created: %d\n", monitor_created_);
}

/// On a thread of its own, as messages come from a gateway or a CAN socket. The library belongs to the
/// thread of the windows, so each message goes there by value; a host with much traffic hands over a batch
/// at a time.
void Host::receive(std::stop_token stop) {
    for (std::uint32_t received = 0; !stop.stop_requested(); ++received) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        const auto fluid = static_cast<std::uint8_t>(received % 200);
        const N2KMsg msg =
            made_up::message(127505, 30, received * 100, {0x11, fluid, 0x4E, 0xDC, 5, 0, 0, 0xFF});
        CallAfter([this, msg] { show(msg); });
    }
}

void Host::show(N2KMsg msg) {
    switch (monitor_->PutMsg(&msg)) {
        case 0: ++shown_; break;   // or filtered out by its source
        case 2: ++paused_; break;  // the user has pressed Pause
        default: ++refused_;       // no room for another stream, or no window
    }
}

/// Holds from the next message of each stream on.
void Host::change_unit() {
    const bool knots = db.GetSelectUnit(quantity::speed) == unit::kt;
    db.SelectUnit(quantity::speed, knots ? unit::m_s : unit::kt);
}

void Host::report() {
    std::size_t streams = 0;
    for (wxWindow* const child : monitor_->GetChildren())
        if (const auto* const tree = dynamic_cast<wxTreeCtrl*>(child))
            streams = tree->GetChildrenCount(tree->GetRootItem(), false);
    wchar_t speed[513];
    const std::uint8_t as_sent[] = {0xF4, 1};  // in centimetres a second
    db.print_val_unit_dt(speed, quantity::speed, as_sent, unit::selected);
    std::printf("title: %s, created: %d\n", monitor_->GetTitle().utf8_str().data(), monitor_created_);
    std::printf("%d shown in %zu streams, %d paused, %d refused\n", shown_, streams, paused_, refused_);
    std::printf("5 m/s are shown as %ls, units applied: %d\n", speed, units_applied);
}

}  // namespace

class App : public wxApp {
  public:
    bool OnInit() override {
        double seconds = 0;  // until the user closes the window
        if (argc > 1 && !argv[1].ToCDouble(&seconds)) {
            std::fputs("usage: toolkit_host [SECONDS]\n", stderr);
            return false;
        }
        (new Host(seconds))->Show();
        return true;
    }
};

wxIMPLEMENT_APP(App);
