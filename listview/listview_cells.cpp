// A cell's value: held in its own kind, read back through QnVariant.
#include "listview/qnlistview2_impl.h"

namespace qt {
namespace listview {

QnVariant Cell::value() const {
  switch (kind) {
    case QnListView2::KindText: return text ? QnVariant(*text) : QnVariant(ustr());
    case QnListView2::KindShort: return QnVariant(number.s);
    case QnListView2::KindInt: return QnVariant(number.i);
    case QnListView2::KindUInt: return QnVariant(number.u);
    case QnListView2::KindFloat: return QnVariant(number.f);
    case QnListView2::KindDouble: return QnVariant(number.d);
    case QnListView2::KindBool: return QnVariant(number.b);
    case QnListView2::KindColorIndex: return QnVariant::fromColorIndex(number.s);
    default: return QnVariant();  // Empty, and a geometry model
  }
}

void Cell::setValue(const QnVariant& v) {
  if (v.type() == QnVariant::Text) {
    // The copy is made before the cell changes.
    std::unique_ptr<ustr> copy(new ustr(v.text()));
    text = std::move(copy);
    kind = QnListView2::KindText;
    number.d = 0;
    return;
  }
  text.reset();
  number.d = 0;
  switch (v.type()) {
    case QnVariant::Short: number.s = v.shortValue(); break;
    case QnVariant::Int: number.i = v.intValue(); break;
    case QnVariant::UInt: number.u = v.uintValue(); break;
    case QnVariant::Float: number.f = v.floatValue(); break;
    case QnVariant::Double: number.d = v.doubleValue(); break;
    case QnVariant::Bool: number.b = v.boolValue(); break;
    case QnVariant::ColorIndex: number.s = v.colorIndex(); break;
    default: break;
  }
  kind = static_cast<uint8_t>(v.type());
}

void Cell::setModel(const gm_model* model) {
  text.reset();
  number.d = 0;
  number.model = model;
  kind = QnListView2::KindGeometry;
}

void Cell::clearValue() {
  text.reset();
  number.d = 0;
  kind = QnListView2::KindEmpty;
}

ustr Cell::shownText() const {
  if (kind == QnListView2::KindText) return text ? *text : ustr();
  if (kind == QnListView2::KindGeometry) return ustr();
  return value().toText(decimals);
}

CellExtra& Cell::extraBlock() {
  if (!extra) extra.reset(new CellExtra);
  return *extra;
}

RowExtra& Row::extraBlock() {
  if (!extra) extra.reset(new RowExtra);
  return *extra;
}

}  // namespace listview
}  // namespace qt
