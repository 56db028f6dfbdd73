// The automation objects of the stand-in server over one in-memory
// workbook model: application, workbook collection, workbook, sheet
// collection, sheet, range (one cell) and comment.
#ifndef QUILTOOL_FAKE_EXCEL_OBJECTS_H
#define QUILTOOL_FAKE_EXCEL_OBJECTS_H

#include <windows.h>
#include <ole2.h>

namespace fake_excel {

// Live objects plus server locks; when it falls to zero the server ends
// (the main thread gets WM_QUIT).
void AddServerReference();
void ReleaseServerReference();
void SetMainThread(DWORD thread);

// A new application object (one reference, the caller's).
IDispatch* NewApplication();
// An object that answers IUnknown only.
IUnknown* NewPlainObject();
// The server's running-object registration; Quit revokes it, and so does
// the end of the server when it was told to stop from outside.
void SetActiveRegistration(DWORD registration);
void RevokeActive();

}  // namespace fake_excel

#endif
