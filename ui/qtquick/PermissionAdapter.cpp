#include "ui/qtquick/PermissionAdapter.h"

namespace quillon {

PermissionAdapter::PermissionAdapter(const AppPermission& permission, QString heading,
                                     const ConsentBannerAdapter& banner, QObject* parent)
    : QObject(parent),
      banner_(banner),
      key_(permission.permissionId),
      heading_(std::move(heading)),
      name_(banner.words(permission.nameMap)),
      description_(new RichTextAdapter(banner.model()->sdk(), this)) {
  if (name_.isEmpty()) name_ = QString::fromStdString(permission.name.value_or(""));
  description_->setHtml(banner.model()->text(permission.description));
}

void PermissionAdapter::set(std::optional<ConsentStatus> status, bool canUpdate) {
  if (status == status_ && canUpdate == canUpdate_) return;
  status_ = status;
  canUpdate_ = canUpdate;
  Q_EMIT changed();
}

}  // namespace quillon
