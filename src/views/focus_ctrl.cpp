#include "views/focus_ctrl.h"

#include <algorithm>

wxFocusCtrl_c::~wxFocusCtrl_c() {
    if (fields_.empty()) return;
    owner_->Unbind(wxEVT_CHILD_FOCUS, &wxFocusCtrl_c::on_child_focus, this);
    for (const Field& field : fields_)
        owner_->Unbind(wxEVT_TEXT_ENTER, &wxFocusCtrl_c::on_text_enter, this, field.control->GetId());
}

int wxFocusCtrl_c::create_field(wxTextCtrl* control, unsigned options, long id, const wxString& text,
                                const wxSize& size, long style) {
    if (control == nullptr) return -1;
    control->Create(owner_, wxID_ANY, text, wxDefaultPosition, size == wxDefaultSize ? wxSize(50, 25) : size,
                    style);
    return register_field(control, options, id);
}

int wxFocusCtrl_c::register_field(wxTextCtrl* control, unsigned options, long id) {
    if (fields_.empty()) {
        owner_->Bind(wxEVT_CHILD_FOCUS, &wxFocusCtrl_c::on_child_focus, this);
        current_ = nullptr;
    }
    owner_->Bind(wxEVT_TEXT_ENTER, &wxFocusCtrl_c::on_text_enter, this, control->GetId());
    fields_.push_back({control, id, options});
    return static_cast<int>(fields_.size()) - 1;
}

long wxFocusCtrl_c::index_of(const wxWindow* control) const {
    const auto field = std::find_if(fields_.begin(), fields_.end(),
                                    [control](const Field& f) { return f.control == control; });
    return field != fields_.end() ? static_cast<long>(field - fields_.begin()) : -1;
}

void wxFocusCtrl_c::report(TextCallback by_index, TextCallback by_id_callback, long index) const {
    const Field& field = fields_[static_cast<std::size_t>(index)];
    const wxString text = field.control->GetValue();
    if (by_index != nullptr)
        by_index(owner_, index, text);
    else if (by_id_callback != nullptr && (field.options & by_id) != 0)
        by_id_callback(owner_, field.id, text);
}

void wxFocusCtrl_c::on_child_focus(wxChildFocusEvent& event) {
    event.Skip();
    wxWindow* const child = event.GetWindow();
    if (child == nullptr || child == current_) return;
    if (const long left = index_of(current_); left >= 0) report(on_kill_focus, on_kill_focus_by_id, left);
    if (const long entered = index_of(child); entered >= 0) {
        const Field& field = fields_[static_cast<std::size_t>(entered)];
        if (on_set_focus != nullptr)
            on_set_focus(owner_, entered);
        else if (on_set_focus_by_id != nullptr && (field.options & by_id) != 0)
            on_set_focus_by_id(owner_, field.id);
    }
    current_ = child;
}

void wxFocusCtrl_c::on_text_enter(wxCommandEvent& event) {
    if (const long index = index_of(dynamic_cast<wxWindow*>(event.GetEventObject())); index >= 0)
        report(on_enter, on_enter_by_id, index);
}
