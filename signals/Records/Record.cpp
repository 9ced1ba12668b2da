#include "signals/Records/Record.h"

#include <algorithm>

namespace quillon::signals {
namespace {

FieldValue emptyValue(const Field& field) {
  switch (field.kind) {
    case FieldKind::integer:
    case FieldKind::boolean:
    case FieldKind::time:
      return field.always.value_or(0);
    case FieldKind::letters:
      return std::string(field.count, 'A');
    case FieldKind::set:
    case FieldKind::sizedSet:
    case FieldKind::vendors:
    case FieldKind::sections:
      return Numbers();
    case FieldKind::values:
      return Numbers(field.count, 0);
    case FieldKind::restrictions:
      break;
  }
  return std::vector<Restriction>();
}

}  // namespace

Record::Record(const Layout& layout) : layout_(&layout) {
  values_.reserve(layout.fields.size());
  for (const auto& field : layout.fields) values_.push_back(emptyValue(field));
}

bool Record::has(std::string_view name) const {
  return indexOf(name) < values_.size();
}

std::size_t Record::indexOf(std::string_view name) const {
  return static_cast<std::size_t>(std::ranges::find(layout_->fields, name, &Field::name) - layout_->fields.begin());
}

}  // namespace quillon::signals
