#include "presentation/AddressFetcher.h"

#include "presentation/dialogs/AnswerOnce.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>
#include <algorithm>

namespace tavrin {

namespace {

constexpr int mostRedirects = 5;
constexpr int statusOk = 200;

QNetworkRequest requestFor(const std::string& address) {
    QNetworkRequest request(QUrl::fromEncoded(QByteArray::fromStdString(address), QUrl::StrictMode));
    request.setHeader(QNetworkRequest::UserAgentHeader, "Tavrin");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(mostRedirects);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    return request;
}

FetchedAddress resultOf(QNetworkReply& reply) {
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply.error() != QNetworkReply::NoError)
        return {std::nullopt, reply.errorString().toStdString()};
    if (status != statusOk)
        return {std::nullopt, "the server answered " + std::to_string(status)};
    return {reply.readAll().toStdString()};
}

} // namespace

AddressFetcher::AddressFetcher(std::chrono::milliseconds time) : longestTime(time) {}

void AddressFetcher::fetch(const std::string& address, std::size_t limit,
                           std::function<void(FetchedAddress)> answer) {
    QNetworkReply* reply = manager.get(requestFor(address));
    const AnswerOnce<FetchedAddress> once(std::move(answer));
    const auto giveUp = [reply, once](const char* reason) {
        once({std::nullopt, reason});
        reply->abort();
    };
    QTimer::singleShot(longestTime, reply, [giveUp] { giveUp("there was no answer in time"); });
    QObject::connect(reply, &QNetworkReply::downloadProgress, reply,
                     [giveUp, limit](qint64 received, qint64 total) {
                         if (std::max(received, total) > static_cast<qint64>(limit))
                             giveUp("there is too much of it");
                     });
    QObject::connect(reply, &QNetworkReply::finished, reply, [reply, once] {
        reply->deleteLater();
        once(resultOf(*reply));
    });
}

} // namespace tavrin
