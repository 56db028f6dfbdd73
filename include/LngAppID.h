// Lng::AppID: the 32-bit id of an application module of the suite.
#ifndef QUILTOOL_LNGAPPID_H
#define QUILTOOL_LNGAPPID_H

namespace Lng {

enum AppID : int {
  APP_NONE = 0,
  APP_HPV = 1,        // main module, fall-back module for texts
  APP_QNE = 2,        // electrical
  APP_QNC = 3,        // common
  APP_QNR = 4,        // room
  APP_QNH = 5,        // heat exchanger
  APP_QNSD = 6,       // schematics
  APP_QNCS = 7,       // circuit designer
  APP_QNU = 8,        // utilities
  APP_QNPP = 9,       // properties palette
  APP_HVAC = 100,
  APP_QPD = 101,
  APP_PMV = 102,
  APP_QNSS = 103,
  APP_UNKNOWN = -1
};

}  // namespace Lng

#endif
