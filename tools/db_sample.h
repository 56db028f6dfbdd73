// quiltool db sample: a project database of a small ventilation plant,
// the same for the same record count, for first runs, tests and timing.
#ifndef QUILTOOL_TOOLS_DB_SAMPLE_H
#define QUILTOOL_TOOLS_DB_SAMPLE_H

#include <cstdio>
#include <string>
#include <vector>

namespace qt_tool {

// The dictionary of the sample databases, in the engine's text form.
extern const char kSampleDictionary[];

// How many records of each set a sample of total records holds: storeys,
// rooms, air-handling units, ducts, terminals (owners before members).
struct SampleCounts {
  long storeys, rooms, units, ducts, terminals;
};
SampleCounts SampleCountsFor(long total);

// Writes a new sample database of total records (at least 5) to path,
// which must not exist yet. 0 on success, else 1 with a message on err.
int WriteSampleDatabase(const std::string& path, long total, FILE* err);

// "quiltool db sample FILE [--records N]"
int DbSampleMain(const std::vector<std::string>& args, FILE* out, FILE* err);

}  // namespace qt_tool

#endif
