// The toolkit's names, as far as the public headers mention them: enough to name functions, nothing to lay out.
#pragma once
class wxWindow {
  public:
    virtual ~wxWindow();
};
class wxFrame : public wxWindow {};
class wxDialog : public wxWindow {};
class wxButton : public wxWindow {};
class wxTextCtrl : public wxWindow {};
class wxTreeCtrl : public wxWindow {};
class wxString {};
class wxTreeItemId {};
class wxPoint;
class wxSize;
class wxCommandEvent;
class wxCloseEvent;
class wxInitDialogEvent;
class wxShowEvent;
