#pragma once

#include "documents/Settings.h"
#include "platform/files/FileStatus.h"
#include "platform/metadata/ExifHelper.h"
#include "platform/metadata/FileManager.h"
#include "store/rows/NodeRow.h"

#include <string_view>

namespace tavrin {

/// The values of a row that the sort orders go by: dates, size, shooting date.
class SortingValues {
  public:
    explicit SortingValues(const Settings& settings)
        : readsShootingDates(settings.shouldRetrieveEXIFInformation),
          sumsFolders(settings.shouldCalculateAccurateFolderSize != 0) {}

    /// Puts in what a look has told. What must be read from the item itself stays to be loaded.
    void put(NodeRow& row, const FileStatus& status, std::string_view name) const {
        row.modDate = status.modificationDate;
        row.crDate = status.creationDate;
        row.exif = readsShootingDates ? FileManager::distantPast : 0.0;
        row.size = status.size;
        row.loaded = RowValues::all;
        if (sumsFolders && status.kind == FileStatus::Kind::folder)
            row.loaded = row.loaded - RowValues::folderSize;
        if (mayHaveShootingDate(status, name))
            row.loaded = row.loaded - RowValues::shootingDate;
    }

  private:
    [[nodiscard]] bool mayHaveShootingDate(const FileStatus& status, std::string_view name) const {
        return readsShootingDates && status.kind == FileStatus::Kind::file && status.size > 0 &&
               ExifHelper::isImageName(name);
    }

    bool readsShootingDates;
    bool sumsFolders;
};

} // namespace tavrin
