// The records that the module bridge (InterApp.h) hands between the suite's
// modules. The bridge never looks inside them: it passes each by pointer or
// reference exactly as received, so the caller and the sibling module that
// exports the function must agree on the layout. They are defined here once,
// for every module built against this header.
//
// Rules that keep the layouts the same on both sides of a call:
//  - every record is standard-layout: plain fields, fixed-size text buffers
//    (wide text, terminated, cut to size), no virtual functions;
//  - the few records that carry a variable number of items hold a
//    std::vector, which is why every module of the suite is built with the
//    same compiler and runtime (as for the exported classes);
//  - fields are only ever appended at the end of a record.
//
// Where no module has given a field a meaning, the record is kept to what
// identifies its object; a module that needs more adds fields at the end.
#ifndef QUILTOOL_INTERAPPRECORDS_H
#define QUILTOOL_INTERAPPRECORDS_H

#include <stdint.h>

#include <vector>

#include "ustr.h"

// One object of a drawing: the drawing's file and the object's AutoCAD
// handle, which stays the same while the drawing is saved and reopened.
struct DwgObjectId {
  wchar_t dwgPath[260];  // full file name of the drawing
  char handle[20];       // the object's handle in hexadecimal digits, "" for none
};

// Where an object lies in a drawing, for zooming to it and marking it.
struct ObjPosInDwg {
  DwgObjectId object;
  double point[3];  // the object's insertion or middle point, in world units
  double radius;    // half the extent to show around the point; 0: the module chooses
};

namespace SelectionArea {

// A named area of a drawing that limits a selection of objects.
struct Object {
  wchar_t name[64];
  double minPoint[3];  // lower corner of the area's bounding box, world units
  double maxPoint[3];  // upper corner
};

}  // namespace SelectionArea

namespace MsyLink {

// A property that a schematic object can take from a linked model object.
struct PropDef_t {
  int id;           // property number of the exporting module
  wchar_t name[64]; // its name as shown to the user

  bool operator<(const PropDef_t& other) const { return id < other.id; }
};

// Which property of the model object fills which property of the schematic one.
struct PropLink_t {
  int sourceId;  // PropDef_t::id on the model side
  int targetId;  // PropDef_t::id on the schematic side
};

// The part data of model drawings that schematic objects are updated from.
struct PartDataMap {
  // One linked model object with the data read from it.
  struct ObjDataExt_t {
    DwgObjectId object;
    wchar_t partId[32];             // the part's number in the product data
    std::vector<ustr> values;       // property values in the order of the PropDef_t set read with them
  };
  std::vector<ObjDataExt_t> objects;
};

}  // namespace MsyLink

namespace ProjectInfo {

// Options of a project that drawings connected to it follow.
struct Options {
  int32_t units;       // 0 metric, 1 imperial
  int32_t flags;       // option bits of the owning module
};

struct SiteInfo {
  wchar_t name[128];
  wchar_t address[256];
  double latitude;   // degrees, north positive
  double longitude;  // degrees, east positive
  double elevation;  // metres above sea level
};

struct BuildingInfo {
  wchar_t name[128];
  int32_t storeyCount;
};

}  // namespace ProjectInfo

namespace ProjectWizard {

// What the project wizard collected for a new project file.
struct Data {
  wchar_t projectName[128];
  wchar_t projectPath[260];  // full file name of the project file to write
  wchar_t templatePath[260]; // file the project starts from, "" for none
  int32_t flags;             // wizard options of the owning module
};

}  // namespace ProjectWizard

namespace OtherDwg {

// Kinds of drawings that a drawing keeps a list of.
enum Type : int {
  ModelDrawing = 0,
  ReferenceDrawing = 1,
  SchematicDrawing = 2
};

}  // namespace OtherDwg

// Appearance of a revision cloud drawn around a selected area.
struct RevisionCloudOptions {
  double arcLength;   // drawing units; 0: the module's default
  int16_t color;      // AutoCAD color number
  wchar_t layer[64];  // "" for the current layer
};

// The text styles of a drawing, by name.
struct TextStyles {
  std::vector<ustr> names;
};

namespace ObjectSelection {

struct Dlg {
  // Messages of the report-data callback: the module reports its progress
  // and the objects it found through them.
  enum CbMsgId : int {
    CbStart = 0,     // wParam: number of steps
    CbStep = 1,      // wParam: step reached
    CbObject = 2,    // wParam: object handle, lParam: object kind
    CbFinished = 3,
    CbCancelled = 4  // asked by the module; answer non-zero to stop
  };
};

}  // namespace ObjectSelection

namespace InterApp {

// One storey of a building as project files keep it.
struct StoreyData_t {
  int16_t id;
  wchar_t name[64];
  double elevation;  // of the floor, metres
  double height;     // floor to floor, metres
};

namespace HPV {

// A pipe or duct system of a project.
struct SystemData_t {
  int16_t id;
  wchar_t name[64];
  int16_t color;   // AutoCAD color number
  int32_t medium;  // medium number of the main module
};

// The electrical connection of a device.
struct ElectricalConnectionData {
  wchar_t deviceId[64];
  int32_t phases;   // 1 or 3
  double power;     // watts
  double voltage;   // volts
};

// What HandleSystems is asked to do.
enum SystemCommand : int {
  SystemsShow = 0,
  SystemsCreate = 1,
  SystemsEdit = 2,
  SystemsDelete = 3
};

}  // namespace HPV

namespace QNE {

// How device ids of a drawing are built.
struct DeviceIdFormat {
  wchar_t prefix[32];
  int32_t digits;  // counter digits, zero-padded
};

// Layer, color and line weight that objects of one kind are drawn with.
struct LayerData {
  wchar_t layer[64];
  int16_t color;
  int16_t lineWeight;  // hundredths of a millimetre, -1 ByLayer
};

}  // namespace QNE
}  // namespace InterApp

#endif
