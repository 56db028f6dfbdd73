// XLIFF 1.2 files for one module and one target language.
#include <tinyxml2.h>

#include <cstring>

#include "cmd_lng_exchange.h"

namespace qt_lng {

namespace {

const char kXliffNamespace[] = "urn:oasis:names:tc:xliff:document:1.2";

// XML 1.0 cannot carry these even as character references.
bool XmlCanCarry(const std::string& text) {
  for (unsigned char c : text) {
    if (c < 0x20 && c != '\t' && c != '\n' && c != '\r') return false;
  }
  return true;
}

// XML readers turn a raw CR into LF; a reference keeps it.
std::string ProtectCarriageReturns(const char* xml) {
  std::string s;
  for (const char* p = xml; *p; ++p) {
    if (*p == '\r') {
      s += "&#13;";
    } else {
      s.push_back(*p);
    }
  }
  return s;
}

const char* LocalName(const char* name) {
  const char* colon = std::strrchr(name, ':');
  return colon ? colon + 1 : name;
}

bool Is(const tinyxml2::XMLElement* e, const char* local) { return std::strcmp(LocalName(e->Name()), local) == 0; }

const tinyxml2::XMLElement* Child(const tinyxml2::XMLElement* parent, const char* local) {
  for (const tinyxml2::XMLElement* c = parent->FirstChildElement(); c; c = c->NextSiblingElement()) {
    if (Is(c, local)) return c;
  }
  return nullptr;
}

// The whole text content of an element; false when it holds markup other
// than text (inline tags this tool never writes).
bool PlainText(const tinyxml2::XMLElement* e, std::string* out) {
  out->clear();
  for (const tinyxml2::XMLNode* n = e->FirstChild(); n; n = n->NextSibling()) {
    if (const tinyxml2::XMLText* t = n->ToText()) {
      out->append(t->Value());
    } else if (!n->ToComment()) {
      return false;
    }
  }
  return true;
}

void CollectUnits(const tinyxml2::XMLElement* parent, Exchange* out, std::vector<std::string>* problems) {
  for (const tinyxml2::XMLElement* e = parent->FirstChildElement(); e; e = e->NextSiblingElement()) {
    if (Is(e, "group")) {
      CollectUnits(e, out, problems);
      continue;
    }
    if (!Is(e, "trans-unit")) continue;
    Unit u;
    u.line = e->GetLineNum();
    const char* id = e->Attribute("id");
    u.id = id ? id : "";
    const tinyxml2::XMLElement* source = Child(e, "source");
    const tinyxml2::XMLElement* target = Child(e, "target");
    if (source && !PlainText(source, &u.source)) {
      problems->push_back("unit " + u.id + ": markup inside <source>");
      continue;
    }
    if (!target) {
      u.usable = false;
    } else {
      if (!PlainText(target, &u.target)) {
        problems->push_back("unit " + u.id + ": markup inside <target>");
        continue;
      }
      const char* state = target->Attribute("state");
      if (state && std::strcmp(state, "needs-translation") == 0) u.usable = false;
    }
    out->units.push_back(u);
  }
}

}  // namespace

bool WriteXliff(const Document& doc, const qt::qlg::Definition& def, const qt::qlg::Language& target, std::string* out,
                std::string* error) {
  const qt::qlg::Language* source = def.byId(def.sourceLanguage);
  tinyxml2::XMLDocument xml;
  xml.InsertEndChild(xml.NewDeclaration());
  tinyxml2::XMLElement* root = xml.NewElement("xliff");
  root->SetAttribute("version", "1.2");
  root->SetAttribute("xmlns", kXliffNamespace);
  xml.InsertEndChild(root);
  tinyxml2::XMLElement* file = xml.NewElement("file");
  file->SetAttribute("original", BaseName(doc.fileName).c_str());
  file->SetAttribute("source-language", source ? source->code.c_str() : "en");
  file->SetAttribute("target-language", target.code.c_str());
  file->SetAttribute("datatype", "plaintext");
  file->SetAttribute("product-name", ("QuilTool " + doc.module).c_str());
  root->InsertEndChild(file);
  tinyxml2::XMLElement* body = xml.NewElement("body");
  file->InsertEndChild(body);
  for (const Entry& e : doc.entries) {
    const std::string* english = e.text(def.sourceLanguage);
    if (!english || english->empty()) continue;
    const std::string* translation = e.text(target.id);
    const bool translated = translation && !translation->empty();
    if (!XmlCanCarry(*english) || (translated && !XmlCanCarry(*translation)) || (e.hasNote && !XmlCanCarry(e.note))) {
      *error = doc.fileName + ":" + std::to_string(e.line) + ": text " + std::to_string(e.id) +
               " holds a control character that XLIFF cannot carry; export it as PO";
      return false;
    }
    tinyxml2::XMLElement* unit = xml.NewElement("trans-unit");
    unit->SetAttribute("id", UnitId(doc.module, e.id).c_str());
    unit->SetAttribute("resname", std::to_string(e.id).c_str());
    unit->SetAttribute("xml:space", "preserve");
    body->InsertEndChild(unit);
    tinyxml2::XMLElement* src = xml.NewElement("source");
    src->SetText(english->c_str());
    unit->InsertEndChild(src);
    tinyxml2::XMLElement* tgt = xml.NewElement("target");
    tgt->SetAttribute("state", translated ? "translated" : "needs-translation");
    if (translated) tgt->SetText(translation->c_str());
    unit->InsertEndChild(tgt);
    if (e.hasNote) {
      tinyxml2::XMLElement* note = xml.NewElement("note");
      note->SetText(e.note.c_str());
      unit->InsertEndChild(note);
    }
  }
  tinyxml2::XMLPrinter printer;
  xml.Print(&printer);
  *out = ProtectCarriageReturns(printer.CStr());
  return true;
}

bool ReadXliff(const std::string& bytes, const std::string& fileName, Exchange* out, std::string* error) {
  tinyxml2::XMLDocument xml(true, tinyxml2::PRESERVE_WHITESPACE);
  if (xml.Parse(bytes.data(), bytes.size()) != tinyxml2::XML_SUCCESS) {
    *error = fileName + ":" + std::to_string(xml.ErrorLineNum()) + ": not well-formed XML: " + xml.ErrorStr();
    return false;
  }
  const tinyxml2::XMLElement* root = xml.RootElement();
  if (!root || !Is(root, "xliff")) {
    *error = fileName + ": the root element is not <xliff>";
    return false;
  }
  const char* version = root->Attribute("version");
  if (!version || std::strcmp(version, "1.2") != 0) {
    *error = fileName + ": only XLIFF version 1.2 is read";
    return false;
  }
  Exchange ex;
  std::vector<std::string> problems;
  int files = 0;
  for (const tinyxml2::XMLElement* f = root->FirstChildElement(); f; f = f->NextSiblingElement()) {
    if (!Is(f, "file")) continue;
    if (++files > 1) {
      *error = fileName + ":" + std::to_string(f->GetLineNum()) + ": more than one <file>; split it per module and language";
      return false;
    }
    const char* lang = f->Attribute("target-language");
    ex.language = lang ? lang : "";
    const char* product = f->Attribute("product-name");
    if (product && std::strncmp(product, "QuilTool ", 9) == 0) ex.module = product + 9;
    if (const tinyxml2::XMLElement* body = Child(f, "body")) CollectUnits(body, &ex, &problems);
  }
  if (!files) {
    *error = fileName + ": no <file> element";
    return false;
  }
  if (!problems.empty()) {
    *error = fileName + ": " + problems.front();
    return false;
  }
  *out = std::move(ex);
  return true;
}

}  // namespace qt_lng
