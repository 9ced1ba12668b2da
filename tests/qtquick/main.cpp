// The screens are tested without a display, on the loop of a real application.
#include <gtest/gtest.h>

#include <QFont>
#include <QGuiApplication>

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_QUICK_BACKEND", "software");
  testing::InitGoogleTest(&argc, argv);
  const QGuiApplication application(argc, argv);
  // The same everywhere, for the pictures.
  QGuiApplication::setFont(QFont("Noto Sans"));
  return RUN_ALL_TESTS();
}
