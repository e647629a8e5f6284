#pragma once

class CTreeCtrl;
class wxTreeCtrl;

namespace pgn_vistel {

/// What the monitor tree needs of a tree control. A line is the control's own item handle; null is none, or
/// as a parent the invisible root.
class TreeControl {
  public:
    using Line = void*;

    virtual ~TreeControl() = default;

    /// Empties the control and gives it the monitor's style.
    virtual void prepare() = 0;
    virtual void clear() = 0;
    virtual Line append(Line parent, const wchar_t* text) = 0;
    /// Leaves a line alone that shows this text already: drawing it again is what costs.
    virtual void set_text(Line line, const wchar_t* text) = 0;
    virtual Line first_child(Line parent) const = 0;
    virtual Line next_sibling(Line line) const = 0;
    virtual void remove(Line line) = 0;
    virtual void expand(Line line, bool expanded) = 0;
    /// Has the control show what was done to it, without waiting for the main loop of anybody.
    virtual void show_changes() = 0;

    /// Writes one of a parent's lines: over the one that the cursor names, else as a new last one. Returns
    /// the cursor for the next.
    Line write(const wchar_t* text, Line parent, Line cursor) {
        if (cursor != nullptr)
            set_text(cursor, text);
        else
            cursor = append(parent, text);
        return next_sibling(cursor);
    }
    void remove_from(Line line) {
        while (line != nullptr) {
            const Line next = next_sibling(line);
            remove(line);
            line = next;
        }
    }
};

class ToolkitTree final : public TreeControl {
  public:
    explicit ToolkitTree(wxTreeCtrl& tree) : tree_(tree) {}
    void prepare() override;
    void clear() override;
    Line append(Line parent, const wchar_t* text) override;
    void set_text(Line line, const wchar_t* text) override;
    Line first_child(Line parent) const override;
    Line next_sibling(Line line) const override;
    void remove(Line line) override;
    void expand(Line line, bool expanded) override;
    void show_changes() override;

  private:
    wxTreeCtrl& tree_;
    bool has_moved_ = false;  // lines have come, gone or moved since changes were shown
};

class NativeTree final : public TreeControl {
  public:
    explicit NativeTree(CTreeCtrl& tree) : tree_(tree) {}
    void prepare() override;
    void clear() override;
    Line append(Line parent, const wchar_t* text) override;
    void set_text(Line line, const wchar_t* text) override;
    Line first_child(Line parent) const override;
    Line next_sibling(Line line) const override;
    void remove(Line line) override;
    void expand(Line line, bool expanded) override;
    void show_changes() override {}  // the control does so by itself

  private:
    CTreeCtrl& tree_;
};

}  // namespace pgn_vistel
