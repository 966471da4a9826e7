#include "invoicing/SmtpSender.h"

#include <curl/curl.h>

#include <QDateTime>
#include <QRegularExpression>
#include <cstring>
#include <mutex>

namespace orve::invoicing {

namespace {

void initCurlOnce() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

struct Upload {
    QByteArray bytes;
    qsizetype offset = 0;
};

size_t readMessage(char* buffer, size_t size, size_t count, void* user) {
    auto* up = static_cast<Upload*>(user);
    const qsizetype room = static_cast<qsizetype>(size * count);
    const qsizetype n = std::min(room, up->bytes.size() - up->offset);
    if (n <= 0) return 0;
    std::memcpy(buffer, up->bytes.constData() + up->offset, static_cast<size_t>(n));
    up->offset += n;
    return static_cast<size_t>(n);
}

// Failures after which no other message could get through either.
bool stopsTheRun(CURLcode code) {
    switch (code) {
        case CURLE_COULDNT_CONNECT:
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_RESOLVE_PROXY:
        case CURLE_LOGIN_DENIED:
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_USE_SSL_FAILED:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_UNSUPPORTED_PROTOCOL:
        case CURLE_URL_MALFORMAT:
        case CURLE_AUTH_ERROR:
            return true;
        default:
            return false;
    }
}

QString causeOf(CURLcode code) {
    switch (code) {
        case CURLE_COULDNT_CONNECT:
            return QStringLiteral("connexion impossible, le serveur ne répond pas");
        case CURLE_COULDNT_RESOLVE_HOST:
            return QStringLiteral("serveur introuvable");
        case CURLE_OPERATION_TIMEDOUT:
            return QStringLiteral("délai dépassé, le serveur ne répond plus");
        case CURLE_LOGIN_DENIED:
        case CURLE_AUTH_ERROR:
            return QStringLiteral("identifiant ou mot de passe refusé");
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_USE_SSL_FAILED:
        case CURLE_SSL_CACERT_BADFILE:
            return QStringLiteral("échec de la connexion chiffrée");
        case CURLE_SEND_ERROR:
        case CURLE_RECV_ERROR:
        case CURLE_GOT_NOTHING:
        case CURLE_PARTIAL_FILE:
            return QStringLiteral("connexion interrompue");
        default:
            return QStringLiteral("échec de l'envoi");
    }
}

}  // namespace

struct SmtpSender::Handle {
    CURL* curl = nullptr;
    // The server's last refusal during the message in hand: the answer the
    // operator reads.
    QString lastReply;
    char error[CURL_ERROR_SIZE] = {};
    ~Handle() {
        if (curl) curl_easy_cleanup(curl);
    }
};

namespace {

int onDebug(CURL*, curl_infotype type, char* data, size_t size, void* user) {
    if (type != CURLINFO_HEADER_IN) return 0;
    // Only a refusal is kept: the farewell that follows it ("221 …") says nothing.
    static const QRegularExpression refusal(QStringLiteral("^[45]\\d\\d[ -]"));
    auto* h = static_cast<QString*>(user);
    const QString line = QString::fromUtf8(data, static_cast<qsizetype>(size)).trimmed();
    if (refusal.match(line).hasMatch()) *h = line;
    return 0;
}

}  // namespace

SmtpSender::SmtpSender(MailSettings settings)
    : m_settings(std::move(settings)), m_handle(std::make_unique<Handle>()) {
    initCurlOnce();
    m_handle->curl = curl_easy_init();
    if (!m_handle->curl)
        throw MailFailure(QStringLiteral("la bibliothèque d'envoi (libcurl) n'a pas pu démarrer"),
                          true);
}

SmtpSender::~SmtpSender() = default;

QString SmtpSender::destination() const { return m_settings.serverText(); }

void SmtpSender::deliver(const MailMessage& message, const QString&) {
    CURL* c = m_handle->curl;
    Upload upload{message.toMime(QDateTime::currentDateTime(), newMessageId(m_settings.sender))};
    curl_slist* recipients = nullptr;
    for (const QString& a : message.recipients())
        recipients = curl_slist_append(recipients, ("<" + a + ">").toUtf8().constData());
    const QByteArray url = m_settings.url().toUtf8();
    const QByteArray from = ("<" + m_settings.sender + ">").toUtf8();
    const QByteArray user = m_settings.user.toUtf8();
    const QByteArray password = m_settings.password.toUtf8();
    m_handle->lastReply.clear();
    m_handle->error[0] = 0;

    curl_easy_setopt(c, CURLOPT_URL, url.constData());
    curl_easy_setopt(c, CURLOPT_MAIL_FROM, from.constData());
    curl_easy_setopt(c, CURLOPT_MAIL_RCPT, recipients);
    curl_easy_setopt(c, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(c, CURLOPT_READFUNCTION, readMessage);
    curl_easy_setopt(c, CURLOPT_READDATA, &upload);
    curl_easy_setopt(c, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(upload.bytes.size()));
    curl_easy_setopt(c, CURLOPT_USE_SSL,
                     m_settings.security == MailSecurity::None ? static_cast<long>(CURLUSESSL_NONE)
                                                               : static_cast<long>(CURLUSESSL_ALL));
    if (!m_settings.user.isEmpty()) {
        curl_easy_setopt(c, CURLOPT_USERNAME, user.constData());
        curl_easy_setopt(c, CURLOPT_PASSWORD, password.constData());
    }
    const long timeout = m_settings.timeoutSeconds;
    curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT, timeout);
    curl_easy_setopt(c, CURLOPT_SERVER_RESPONSE_TIMEOUT, timeout);
    // A message that stops moving for that long is given up.
    curl_easy_setopt(c, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(c, CURLOPT_LOW_SPEED_TIME, timeout);
    curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(c, CURLOPT_ERRORBUFFER, m_handle->error);
    curl_easy_setopt(c, CURLOPT_VERBOSE, 1L);
    curl_easy_setopt(c, CURLOPT_DEBUGFUNCTION, onDebug);
    curl_easy_setopt(c, CURLOPT_DEBUGDATA, &m_handle->lastReply);

    const CURLcode code = curl_easy_perform(c);
    curl_easy_setopt(c, CURLOPT_MAIL_RCPT, nullptr);
    curl_slist_free_all(recipients);
    if (code == CURLE_OK) return;

    // The server's own refusal ("550 5.1.1 …") says most; else what failed.
    const QString reply = m_handle->lastReply;
    const QString detail = QString::fromUtf8(m_handle->error).trimmed();
    QString answer;
    if (!reply.isEmpty())
        answer = QStringLiteral("le serveur a répondu « %1 »").arg(reply);
    else
        answer =
            causeOf(code) + (detail.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(detail));
    throw MailFailure(answer, stopsTheRun(code));
}

}  // namespace orve::invoicing
