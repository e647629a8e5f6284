// Shows one message in a native tree with the installed shared library, which needs no display.

#include <cstdio>

#include "message.h"
#include "pgn_vistel/native_tree.h"
#include "pgn_vistel/pgn_vistel.h"

int main() {
    std::printf("%u units\n", GetUnitDataType_Num());
    CTreeCtrl control;
    PGN_VistelTree_c tree(nullptr, &control, 10, 0);
    tree.OnInit();
    N2KMsg msg = speed_message();
    PGN_VistelTree_PutMsg(&tree, &msg);
    for (_TREEITEM* item = control.GetChildItem(control.GetChildItem(nullptr)); item != nullptr;
         item = control.GetNextSiblingItem(item))
        std::printf("%ls\n", control.GetItemText(item).c_str());
}
