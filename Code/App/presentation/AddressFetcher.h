#pragma once

#include "shell/asking/FrontEnd.h"

#include <QNetworkAccessManager>
#include <chrono>
#include <functional>
#include <string>

namespace tavrin {

/// Loads what lies at a web address into memory, with no cookies, no cache and no name and password. An
/// address may lead on to others that are no less safe. When this goes, answers that are under way are
/// dropped uncalled.
class AddressFetcher {
  public:
    explicit AddressFetcher(std::chrono::milliseconds longestTime = std::chrono::seconds(20));

    void fetch(const std::string& address, std::size_t limit, std::function<void(FetchedAddress)> answer);

  private:
    std::chrono::milliseconds longestTime;
    QNetworkAccessManager manager;
};

} // namespace tavrin
