// Library-wide state of the settings readers and writers, and the steps
// they share with the suite-wide values and the window positions.
#ifndef QUILTOOL_SETTINGS_REG_INTERNAL_H
#define QUILTOOL_SETTINGS_REG_INTERNAL_H

#include <cstddef>

#include "qn_wintypes.h"

namespace qt_registry {

const int kPathChars = 260;
const int kRingSize = 10;
const int kRingChars = 1024;
const int kFontChars = 128;

struct State {
  wchar_t basePath[kPathChars] = {0};
  // Counts RegInt_Init's calls, so that what was read under one
  // application key is not taken for another's.
  unsigned long keyGeneration = 0;
  HKEY userKey = nullptr;
  HKEY machineKey = nullptr;
  // Overwritten by every call that takes a setting path.
  wchar_t keyPart[kPathChars] = {0};
  wchar_t valuePart[kPathChars] = {0};
  wchar_t ring[kRingSize][kRingChars] = {};
  int ringCounter = 0;
  wchar_t fixedFont[kFontChars] = {0};
  wchar_t variableFont[kFontChars] = {0};
};

State& Reg();

// Opens (creating) the user application key named by basePath.
bool OpenUserKey();
// root, or for a null root the user application key, opened again when an
// earlier open failed.
HKEY Base(HKEY root);

// Cuts the path to 259 characters, turns "/" into "\" and splits it at the
// last "\" into key (kPathChars) and value (kPathChars).
void SplitSettingPath(const wchar_t* path, wchar_t* key, wchar_t* value);

// Splits path into the shared buffers, opens its key for reading (under
// root, or under the user application key) and asks the value's size.
// On success the caller closes *key.
bool OpenForRead(HKEY root, const wchar_t* path, HKEY* key, DWORD* size);
// Reads the value named by the last split into buffer, ignoring its type;
// fails when the value is larger than the buffer.
bool RawRead(HKEY key, DWORD valueSize, BYTE* buffer, DWORD bufferSize);
// Open and raw read in one: the value's text (UTF-16 bytes of at most
// limitBytes) into out, a zeroed buffer of outChars characters.
bool ReadLimitedText(HKEY root, const wchar_t* path, DWORD limitBytes, wchar_t* out, int outChars);

}  // namespace qt_registry

#endif
