// Linked into hosts on Windows. The toolkit's headers make compilers there write the virtual tables of two
// of its classes into every host, which asks for these functions; the toolkit itself is inside the library
// alone. No host makes objects of these classes, so nothing is ever called.

#include <wx/event.h>
#include <wx/thread.h>

wxEventFunctor::~wxEventFunctor() {}
wxCriticalSection::~wxCriticalSection() {}
void wxCriticalSection::Enter() {}
void wxCriticalSection::Leave() {}
wxThread::~wxThread() {}
bool wxThread::TestDestroy() {
    return true;
}
