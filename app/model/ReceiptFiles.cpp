#include "app/model/ReceiptFiles.h"

#include "app/lists/QtConversions.h"

namespace tovi {

ReceiptFiles::ReceiptFiles()
    : DifferenceListModel(
          [](const ReceiptFile& file) { return file.path; },
          {{"path", [](const ReceiptFile& file) { return toQt(file.path); }},
           {"newName", [](const ReceiptFile& file) { return toQt(file.newName); }},
           {"size", [](const ReceiptFile& file) { return QVariant::fromValue<qint64>(file.size); }},
           {"isRestored", [](const ReceiptFile& file) { return file.isRestored; }}}) {}

} // namespace tovi
