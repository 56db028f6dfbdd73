// Checking a project database: the storage's own integrity, then every
// record against the dictionary and its owner links.
#include <string>
#include <vector>

#include "project/qb_engine.h"
#include "project/qb_record.h"

using namespace qb;

namespace {

std::string Describe(std::string_view id, const Dictionary& d, int setNo) {
  std::string text = "record '" + std::string(id) + "'";
  if (setNo >= 1 && setNo <= static_cast<int>(d.sets.size())) text += " (" + d.sets[setNo - 1].name + ")";
  return text;
}

// Problems of one stored record.
short CheckRow(Backend& b, const Dictionary& d, const Row& row, std::vector<std::string>* problems) {
  const std::string who = Describe(row.id, d, row.setNo);
  if (!IsIdText(row.id, d.idLength)) problems->push_back(who + ": the id does not fit the dictionary");
  if (row.setNo < 1 || row.setNo > static_cast<int>(d.sets.size())) {
    problems->push_back(who + ": set number " + std::to_string(row.setNo) + " is not in the dictionary");
    return QB_OK;
  }
  const SetDef& set = d.sets[row.setNo - 1];
  std::string_view linked;
  AttReader reader(row.data);
  AttView a;
  while (reader.Next(&a)) {
    const AttDef* decl = set.Find(a.number);
    const std::string att = who + ": attribute " + std::to_string(a.number);
    if (!decl) {
      problems->push_back(att + " is not declared for the set");
    } else if (decl->type != a.type) {
      problems->push_back(att + " is stored as " + AttTypeName(a.type) + ", declared as " + AttTypeName(decl->type));
    } else if (CheckAttValue(d, a.type, a.data, a.size) != QB_OK) {
      problems->push_back(att + " does not fit its type " + AttTypeName(a.type));
    }
    if (set.ownerSet >= 0 && a.number == set.ownerAtt)
      linked = std::string_view(reinterpret_cast<const char*>(a.data), a.size);
  }
  if (reader.damaged()) problems->push_back(who + ": the attribute data is damaged");
  if (row.owner != linked) {
    problems->push_back(who + ": the owner index says '" + std::string(row.owner) + "', the owner link says '" +
                        std::string(linked) + "'");
  }
  if (!linked.empty()) {
    int ownerSet = 0;
    const short s = b.Lookup(linked, &ownerSet);
    if (s != QB_OK) return s;
    if (!ownerSet)
      problems->push_back(who + ": its owner '" + std::string(linked) + "' does not exist");
    else if (ownerSet != set.ownerSet + 1)
      problems->push_back(who + ": its owner '" + std::string(linked) + "' is not of set " +
                          d.sets[set.ownerSet].name);
  }
  return QB_OK;
}

short CheckAll(File* f, std::vector<std::string>* problems) {
  Backend& b = *f->backend;
  short s = b.CheckStorage(problems);
  if (s != QB_OK) return s;
  const Walk all;
  std::string last;
  for (bool first = true;; first = false) {
    Row row;
    row.wantOwner = true;
    const std::string_view from(last);
    s = b.Step(all, true, first ? nullptr : &from, false, &row);
    if (s == QBERR_NOTFOUND) return QB_OK;
    if (s != QB_OK) return s;
    last.assign(row.id.data(), row.id.size());
    s = CheckRow(b, *f->dict, row, problems);
    if (s != QB_OK) return s;
  }
}

}  // namespace

namespace qb {

short CheckFile(File* f, std::vector<std::string>* problems) {
  // One snapshot for the whole check.
  const bool own = !f->backend->InTransaction();
  short s = own ? f->backend->BeginRead() : static_cast<short>(QB_OK);
  if (s == QB_OK) s = CheckAll(f, problems);
  if (own) f->backend->Rollback();
  return s;
}

}  // namespace qb

long qbcheckfile(short hfile, qbcheckproc proc, void* context) {
  std::vector<std::string> problems;
  const short s = Guarded(hfile, [&]() -> short {
    File* f;
    short status = OpenFileOf(hfile, &f);
    if (status == QB_OK) status = qb::CheckFile(f, &problems);
    return status;
  });
  if (s != QB_OK) return s;
  if (proc) {
    for (const std::string& p : problems) proc(context, p.c_str());
  }
  return static_cast<long>(problems.size());
}
