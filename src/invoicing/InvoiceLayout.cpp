#include "invoicing/InvoiceLayout.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <QHash>
#include <QImage>
#include <QMutex>
#include <QPagedPaintDevice>
#include <QPainter>
#include <algorithm>

#include "store/Formats.h"

namespace orve::invoicing {

namespace {

// Page and layout, in twips from the top left corner of an A4 page.
constexpr int kPageWidth = 11906;
constexpr int kPageHeight = 16838;
constexpr int kLogoX = 500, kLogoY = 500, kLogoWidth = 2700;
constexpr int kTitleX = 6000, kTitleY = 600;
// The invoice a credit note cancels, under its title and well above the
// address blocks.
constexpr int kCancelledY = 1050;
constexpr int kBlocksY = 2500;
constexpr int kBilledX = 300;
constexpr int kClientX = 5400;
constexpr int kCompetitionX = 6300, kCompetitionY = 3000, kCompetitionStep = 400;
constexpr int kLineStep = 300;
constexpr int kTableLeft = 300, kTableRight = 10500;
constexpr int kRules[] = {5300, 6600, 8100};
constexpr int kHeadX[] = {1500, 5500, 7100, 8600};
constexpr int kTextX = 500, kQuantityX = 6000, kUnitPriceRight = 7500, kAmountRight = 9500;
constexpr int kFirstRowOffset = 500;  // from the heads to the first row
constexpr int kLabelX = 7500, kTotalsRight = 10400, kTotalsStep = 400;
constexpr int kNoticeX = 300;
constexpr int kSlipX = 7800, kSlipY = 13300, kSlipWidth = 3500, kSlipHeight = 2000;
constexpr int kFooterY = 15500, kFooterStep = 500;
// The lowest a table may end: above the footer on a full page, above the
// totals, notice and slip on the last one.
constexpr int kLastTableBottom = 12000;
constexpr int kFullTableBottom = 15200;
constexpr int kNextPageHeadY = 2500;
constexpr int kMinFirstHeadY = 5000;
// When the rows do not all fit above the totals, at least this many of them
// (all but one of fewer) are carried to the last page, so the totals never
// stand under an empty table.
constexpr int kRowsCarriedToLastPage = 5;

const QColor kBlue(0, 0, 255);
const QColor kBlack(0, 0, 0);

// Font sizes along the page.
constexpr int kTitleSize = 12, kCancelledSize = 11, kClientSize = 11, kBilledSize = 12,
              kCompetitionSize = 10, kHeadSize = 10, kRowSize = 10, kTotalsSize = 12,
              kTermsSize = 10, kNoticeSize = 8, kSlipSize = 10, kFooterNameSize = 14,
              kFooterSize = 12;

// The metric twin of Times New Roman where it is installed; Times New Roman itself elsewhere.
QString fontFamily() {
    static const QString family = [] {
        const QString twin = QStringLiteral("Liberation Serif");
        if (QFontDatabase::families().contains(twin)) return twin;
        for (const char* path :
             {"/usr/share/fonts/truetype/liberation2/LiberationSerif-Regular.ttf",
              "/usr/share/fonts/truetype/liberation/LiberationSerif-Regular.ttf"}) {
            const int id = QFontDatabase::addApplicationFont(QString::fromLatin1(path));
            if (id >= 0) {
                const QStringList fams = QFontDatabase::applicationFontFamilies(id);
                if (!fams.isEmpty()) return fams.first();
            }
        }
        return QStringLiteral("Times New Roman");
    }();
    return family;
}

// Pictures are read and reduced once per program run: each document embeds
// them again, so their size is the cost of every document.
QImage cachedImage(const QString& path, int width) {
    static QMutex mutex;
    static QHash<QString, QImage> cache;
    const QString key = path + QChar('|') + QString::number(width);
    QMutexLocker lock(&mutex);
    auto it = cache.find(key);
    if (it != cache.end()) return *it;
    QImage image(path);
    if (!image.isNull() && image.width() > width)
        image = image.scaledToWidth(width, Qt::SmoothTransformation);
    // Laid on white: an image without transparency is embedded once, not twice.
    if (!image.isNull() && image.hasAlphaChannel()) {
        QImage flat(image.size(), QImage::Format_RGB32);
        flat.fill(Qt::white);
        QPainter p(&flat);
        p.drawImage(0, 0, image);
        p.end();
        image = flat;
    }
    cache.insert(key, image);
    return image;
}

// Outlines only: hinting is for screens, and running the font's hinting
// program for every glyph of every document is most of a document's cost.
QFont makeFont(int size) {
    QFont f(fontFamily());
    f.setPointSize(size);
    f.setStyleStrategy(
        QFont::StyleStrategy(QFont::PreferOutline | QFont::ForceOutline | QFont::PreferNoShaping));
    f.setHintingPreference(QFont::PreferNoHinting);
    f.setKerning(false);
    return f;
}

QFont documentFont(int size) {
    static QMutex mutex;
    static QHash<int, QFont> fonts;
    QMutexLocker lock(&mutex);
    auto it = fonts.find(size);
    if (it == fonts.end()) it = fonts.insert(size, makeFont(size));
    return *it;
}

// Draws text whose top stands at y, as the layout gives positions.
class Page {
  public:
    explicit Page(QPainter& p) : m_p(p) {}
    void font(int size, const QColor& colour = kBlack) {
        m_p.setFont(documentFont(size));
        m_p.setPen(colour);
    }
    void text(int x, int y, const QString& t) {
        m_p.drawText(QPointF(x, y + m_p.fontMetrics().ascent()), t);
    }
    // Cut with an ellipsis so the text never runs over its column.
    void textWithin(int x, int y, const QString& t, int width) {
        text(x, y, m_p.fontMetrics().elidedText(t, Qt::ElideRight, width));
    }
    void rightAligned(int right, int y, const QString& t) {
        text(right - m_p.fontMetrics().horizontalAdvance(t), y, t);
    }
    void centred(int y, const QString& t) {
        text((kPageWidth - m_p.fontMetrics().horizontalAdvance(t)) / 2, y, t);
    }
    int width(const QString& t) const { return m_p.fontMetrics().horizontalAdvance(t); }
    QPainter& painter() { return m_p; }

  private:
    QPainter& m_p;
};

int blockBottom(int firstY, int lineCount) { return firstY + lineCount * kLineStep + 250; }

// Where the heads of the first page's table stand, under the address blocks.
int firstHeadY(const InvoiceDocumentData& doc, bool client) {
    const int billedBottom = blockBottom(kBlocksY, static_cast<int>(doc.billed.size()));
    int competitionY = kCompetitionY;
    int rightBottom = 0;
    if (client) {
        const int clientBottom = blockBottom(kBlocksY, static_cast<int>(doc.client.size()));
        competitionY = std::max(kCompetitionY, clientBottom + 150);
        rightBottom = clientBottom;
    }
    rightBottom = std::max(rightBottom, competitionY + 2 * kCompetitionStep + 250);
    return std::max({kMinFirstHeadY, billedBottom + 400, rightBottom + 400});
}

void paintBackgroundAndTitle(Page& page, const InvoiceDocumentData& doc,
                             const DocumentSettings& s) {
    QPainter& p = page.painter();
    if (!s.nationalLetterhead()) {
        const QImage paper = cachedImage(s.letterhead.background, 620);
        if (!paper.isNull()) p.drawImage(QRectF(0, 0, kPageWidth, kPageHeight), paper);
    }
    const QImage logo = cachedImage(s.letterhead.logo, 420);
    if (!logo.isNull()) {
        const int h = kLogoWidth * logo.height() / std::max(1, logo.width());
        p.drawImage(QRectF(kLogoX, kLogoY, kLogoWidth, h), logo);
    }
    page.font(kTitleSize, kBlue);
    page.text(kTitleX, kTitleY,
              (doc.creditNote ? QStringLiteral("AVOIR N° BOW") : QStringLiteral("FACTURE N° BOW")) +
                  doc.number + QStringLiteral(" du ") + doc.date);
    if (doc.creditNote && !doc.cancelledNumber.isEmpty()) {
        page.font(kCancelledSize);
        page.textWithin(
            kTitleX, kCancelledY,
            QStringLiteral("Avoir sur facture N° BOW") + doc.cancelledNumber +
                (doc.cancelledDate.isEmpty() ? QString()
                                             : QStringLiteral(" du ") + doc.cancelledDate),
            kPageWidth - kTitleX - 300);
    }
}

void paintFooter(Page& page, const DocumentSettings& s) {
    page.font(kFooterNameSize, kBlue);
    page.centred(kFooterY, s.letterhead.name);
    page.font(kFooterSize);
    const QString line = s.letterhead.footerLine();
    // A long address steps down rather than run off the page.
    int size = kFooterSize;
    while (size > 7 && page.width(line) > kTableRight - kTableLeft) page.font(--size);
    page.centred(kFooterY + kFooterStep, line);
}

void paintTableFrame(Page& page, int headY, int rows) {
    QPainter& p = page.painter();
    const int top = headY - 150;
    const int bottom = headY + kFirstRowOffset + rows * kLineStep;
    p.setPen(QPen(kBlack, 15));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRect(kTableLeft, top, kTableRight - kTableLeft, bottom - top));
    for (int x : kRules) p.drawLine(x, top, x, bottom);
    p.drawLine(kTableLeft, headY + 350, kTableRight, headY + 350);
    page.font(kHeadSize);
    const QString heads[] = {QStringLiteral("DESIGNATION"), QStringLiteral("Quantité"),
                             QStringLiteral("P.U."), QStringLiteral("Montant HT")};
    for (int i = 0; i < 4; ++i) page.text(kHeadX[i], headY, heads[i]);
}

void paintRows(Page& page, int headY, const std::vector<StoredLine>& lines, size_t from,
               size_t count) {
    page.font(kRowSize);
    for (size_t i = 0; i < count; ++i) {
        const StoredLine& l = lines[from + i];
        const int y = headY + kFirstRowOffset + static_cast<int>(i) * kLineStep;
        page.textWithin(kTextX, y, l.text, kRules[0] - kTextX - 100);
        // A free-text line carries only its text and its amount.
        if (l.article != kFreeTextArticle) {
            page.text(kQuantityX, y, format::countPlain(l.quantity));
            page.rightAligned(kUnitPriceRight, y, format::amountEuroPlain(l.unitPrice));
        }
        page.rightAligned(kAmountRight, y, format::amountEuro(l.amount));
    }
}

void paintAddresses(Page& page, const InvoiceDocumentData& doc, bool client) {
    int competitionY = kCompetitionY;
    if (client) {
        page.font(kClientSize);
        page.textWithin(kClientX, kBlocksY,
                        QStringLiteral("Client concerné : ") + doc.clientAccount,
                        kPageWidth - kClientX - 400);
        int y = kBlocksY;
        for (const QString& l : doc.client)
            page.textWithin(kClientX, y += kLineStep, l, kPageWidth - kClientX - 400);
        competitionY = std::max(kCompetitionY, blockBottom(kBlocksY, int(doc.client.size())) + 150);
    }
    page.font(kBilledSize);
    page.text(kBilledX, kBlocksY, QStringLiteral("Adresse de facturation :  "));
    int y = kBlocksY;
    for (const QString& l : doc.billed)
        page.textWithin(kBilledX, y += kLineStep, l, kClientX - kBilledX - 200);

    page.font(kCompetitionSize, kBlue);
    page.text(kCompetitionX, competitionY, QStringLiteral("Discipline : Bowling"));
    page.font(kCompetitionSize);
    const int width = kPageWidth - kCompetitionX - 300;
    page.textWithin(kCompetitionX, competitionY + kCompetitionStep,
                    QStringLiteral("Compétition : ") + doc.competitionTitle +
                        QStringLiteral(" du ") + doc.competitionDate,
                    width);
    page.textWithin(
        kCompetitionX, competitionY + 2 * kCompetitionStep,
        QStringLiteral("N° Interne : ") +
            QStringList{QStringLiteral("BW"), doc.season, doc.code1, doc.code2}.join(QChar('-')),
        width);
}

void paintTotalsAndSlip(Page& page, const InvoiceDocumentData& doc, int tableBottom,
                        const Letterhead& head) {
    QPainter& p = page.painter();
    const Money total = doc.total();
    const Money net = doc.creditNote ? total : total - doc.deposit;
    const int t = tableBottom + 100;
    // The sum closes the amount column.
    p.setPen(QPen(kBlack, 15));
    p.drawRect(QRect(kRules[2], tableBottom, kTableRight - kRules[2], 400));
    page.font(kTotalsSize);
    page.rightAligned(kAmountRight, t, format::amountEuro(total));
    int y = t;
    if (!doc.creditNote) {
        page.text(kLabelX, y += kTotalsStep, QStringLiteral("Acompte versé :"));
        page.rightAligned(kTotalsRight, y, format::amountEuro(doc.deposit));
    }
    page.text(kLabelX, y += kTotalsStep, QStringLiteral("Net à Payer :"));
    page.rightAligned(kTotalsRight, y, format::amountEuro(net));

    page.font(kTermsSize);
    page.text(kNoticeX, t + 300, QStringLiteral("TVA NON APPLICABLE"));
    page.text(kNoticeX, t + 550, QStringLiteral("Mode de règlement : à réception"));
    page.text(kNoticeX, t + 800, QStringLiteral("Date échéance : ") + doc.dueDate);

    if (!doc.creditNote) {
        page.font(kNoticeSize, kBlue);
        page.text(kNoticeX, t + 1500,
                  QStringLiteral("Les Règlements sont à effectuer à l'ordre de la K.V.A.R.N."));
        page.font(kNoticeSize);
        page.text(kNoticeX, t + 1800,
                  QStringLiteral("GAGNEZ DU TEMPS ! Règlez par virement bancaire."));
        page.text(kNoticeX, t + 2100, QStringLiteral("Domiciliation : ") + head.bank);
        page.text(kNoticeX, t + 2400, QStringLiteral("IBAN : ") + head.iban);
        page.text(kNoticeX, t + 2700, QStringLiteral("BIC : ") + head.bic);
    }

    p.setPen(QPen(kBlack, 15));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRect(kSlipX, kSlipY, kSlipWidth, kSlipHeight));
    page.font(kSlipSize);
    const int x = kSlipX + 100;
    const int w = kSlipWidth - 200;
    page.textWithin(x, kSlipY + 150, QStringLiteral("Coupon à joindre à votre règlement"), w);
    page.textWithin(x, kSlipY + 500, QStringLiteral("Client : ") + doc.billedName, w);
    page.textWithin(
        x, kSlipY + 800,
        (doc.creditNote ? QStringLiteral("Avoir N° : ") : QStringLiteral("Facture N° : ")) +
            doc.number,
        w);
    page.textWithin(x, kSlipY + 1100, QStringLiteral("Date facture : ") + doc.date, w);
    page.textWithin(x, kSlipY + 1400, QStringLiteral("Date échéance : ") + doc.dueDate, w);
    page.textWithin(x, kSlipY + 1700, QStringLiteral("Montant : ") + format::amountEuro(net), w);
}

}  // namespace

std::vector<int> paginateLines(int lineCount, int firstPageHeadY) {
    std::vector<int> pages;
    int remaining = lineCount;
    int headY = firstPageHeadY;
    auto capacity = [&](int bottom) {
        return std::max(1, (bottom - headY - kFirstRowOffset) / kLineStep);
    };
    while (true) {
        const int last = capacity(kLastTableBottom);
        if (remaining <= last) {
            pages.push_back(remaining);
            return pages;
        }
        // Fill the page, but carry a few lines over to stand above the totals.
        const int take = std::min(capacity(kFullTableBottom),
                                  remaining - std::min(kRowsCarriedToLastPage, remaining - 1));
        pages.push_back(take);
        remaining -= take;
        headY = kNextPageHeadY;
    }
}

void paintInvoiceDocument(QPainter& painter, QPagedPaintDevice& device,
                          const InvoiceDocumentData& doc, const DocumentSettings& s) {
    Page page(painter);
    const bool client = showsClientBlock(doc.account, s);
    const int headY = firstHeadY(doc, client);
    const std::vector<int> pages = paginateLines(static_cast<int>(doc.lines.size()), headY);
    size_t from = 0;
    for (size_t i = 0; i < pages.size(); ++i) {
        if (i > 0) device.newPage();
        paintBackgroundAndTitle(page, doc, s);
        const int y = i == 0 ? headY : kNextPageHeadY;
        if (i == 0) paintAddresses(page, doc, client);
        paintTableFrame(page, y, pages[i]);
        paintRows(page, y, doc.lines, from, static_cast<size_t>(pages[i]));
        from += static_cast<size_t>(pages[i]);
        if (i + 1 == pages.size())
            paintTotalsAndSlip(page, doc, y + kFirstRowOffset + pages[i] * kLineStep, s.letterhead);
        paintFooter(page, s);
    }
}

}  // namespace orve::invoicing
