#include "monitor/open_dialog.h"

#include <wx/button.h>
#include <wx/combobox.h>
#include <wx/dialog.h>
#include <wx/filedlg.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

namespace vistel {

std::string ask_for_source(wxWindow* parent, const std::vector<std::string>& recent) {
    wxDialog dialog(parent, wxID_ANY, "Open", wxDefaultPosition, wxDefaultSize,
                    wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER);
    wxArrayString names;
    for (const std::string& name : recent) names.Add(wxString::FromUTF8(name));
    auto* const name =
        new wxComboBox(&dialog, wxID_ANY, names.empty() ? wxString() : names.front(), wxDefaultPosition,
                       dialog.FromDIP(wxSize(420, -1)), names, wxTE_PROCESS_ENTER);
    auto* const browse = new wxButton(&dialog, wxID_ANY, "&Browse...");
    browse->Bind(wxEVT_BUTTON, [&](wxCommandEvent&) {
        wxFileDialog chooser(&dialog, "Open a recording", wxEmptyString, wxEmptyString,
                             wxFileSelectorDefaultWildcardStr,
                             wxFD_OPEN | wxFD_FILE_MUST_EXIST | wxFD_MULTIPLE);
        if (chooser.ShowModal() != wxID_OK) return;
        wxArrayString paths;
        chooser.GetPaths(paths);
        wxString all;
        for (const wxString& path : paths) all << (all.empty() ? "" : " + ") << path;
        name->SetValue(all);
    });
    name->Bind(wxEVT_TEXT_ENTER, [&](wxCommandEvent&) { dialog.EndModal(wxID_OK); });
    auto* const row = new wxBoxSizer(wxHORIZONTAL);
    row->Add(name, wxSizerFlags(1).CenterVertical());
    row->Add(browse, wxSizerFlags().CenterVertical().Border(wxLEFT));
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    const auto border = wxSizerFlags().Expand().Border();
    sizer->Add(
        new wxStaticText(&dialog, wxID_ANY, "A recording or a live source; several with  +  between them:"),
        border);
    sizer->Add(row, border);
    sizer->Add(new wxStaticText(&dialog, wxID_ANY,
                                "can0\ttcp://192.168.4.1:1457\tudp://:1457\t"
                                "tcp-listen://:60002\tserial:/dev/ttyUSB0"),
               border);
    sizer->Add(dialog.CreateSeparatedButtonSizer(wxOK | wxCANCEL), border);
    dialog.SetSizerAndFit(sizer);
    dialog.CentreOnParent();
    name->SetFocus();
    name->SelectAll();
    if (dialog.ShowModal() != wxID_OK) return {};
    return name->GetValue().Trim().Trim(false).ToStdString(wxConvUTF8);
}

}  // namespace vistel
