#pragma once

#include <wx/textctrl.h>

#include <vector>

/// Watches some text controls of a window as input fields: tells callbacks when one gains the focus, loses
/// it, or receives Enter. Fields are known by index, in the order of their registration.
class wxFocusCtrl_c {
  public:
    enum FieldOptions : unsigned {
        by_id = 1
    };  // report through the callbacks by id where those by index are null

    explicit wxFocusCtrl_c(wxWindow* owner) : owner_(owner) {}
    wxFocusCtrl_c(const wxFocusCtrl_c&) = delete;
    wxFocusCtrl_c& operator=(const wxFocusCtrl_c&) = delete;
    /// Before the owner is gone.
    ~wxFocusCtrl_c();

    /// Creates `control` as a child of the owner (a default size becomes 50 by 25 pixels) and registers it.
    /// Returns its index, -1 without a control.
    int create_field(wxTextCtrl* control, unsigned options, long id, const wxString& text, const wxSize& size,
                     long style);
    int register_field(wxTextCtrl* control, unsigned options, long id);

    using FocusCallback = void (*)(wxWindow* owner, long index_or_id);
    using TextCallback = void (*)(wxWindow* owner, long index_or_id, const wxString& text);
    FocusCallback on_set_focus = nullptr;
    TextCallback on_kill_focus = nullptr;
    TextCallback on_enter = nullptr;
    FocusCallback on_set_focus_by_id = nullptr;
    TextCallback on_kill_focus_by_id = nullptr;
    TextCallback on_enter_by_id = nullptr;

  private:
    struct Field {
        wxTextCtrl* control;
        long id;
        unsigned options;
    };

    void on_child_focus(wxChildFocusEvent& event);
    void on_text_enter(wxCommandEvent& event);
    long index_of(const wxWindow* control) const;
    void report(TextCallback by_index, TextCallback by_id_callback, long index) const;

    wxWindow* const owner_;
    wxWindow* current_ = nullptr;
    std::vector<Field> fields_;
};
