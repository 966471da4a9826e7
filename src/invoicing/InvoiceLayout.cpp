#include "invoicing/InvoiceLayout.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <QHash>
#include <QImage>
#include <QMutex>
#include <QPagedPaintDevice>
#include <QPainter>
#include <algorithm>
#include <numeric>

#include "store/Formats.h"

namespace orve::invoicing {

namespace {

// Page and layout, in twips from the top left corner of an A4 page.
constexpr int kPageWidth = 11906;
constexpr int kPageHeight = 16838;
constexpr int kLogoX = 500, kLogoY = 500, kLogoWidth = 2700;
// Who issues the document, beside the logo and left of the title.
constexpr int kIssuerX = 3450, kIssuerY = 520, kIssuerRight = 5850, kIssuerBottom = 2250;
constexpr int kTitleX = 6000, kTitleY = 600;
// The invoice a credit note cancels, under its title and well above the
// address blocks.
constexpr int kCancelledY = 1050;
constexpr int kBlocksY = 2500;
constexpr int kBilledX = 300;
constexpr int kClientX = 5400;
constexpr int kCompetitionX = 6300, kCompetitionY = 3000, kCompetitionStep = 400;
constexpr int kLineStep = 300;
// The second and further lines of one text that did not fit on one.
constexpr int kWrapStep = 240, kSmallWrapStep = 200;
constexpr int kTableLeft = 300, kTableRight = 10500;
constexpr int kRules[] = {5300, 6600, 8100};
constexpr int kHeadX[] = {1500, 5500, 7100, 8600};
constexpr int kTextX = 500, kQuantityX = 6000, kUnitPriceRight = 7500, kAmountRight = 9500;
constexpr int kFirstRowOffset = 500;  // from the heads to the first row
constexpr int kLabelX = 7500, kTotalsRight = 10400, kTotalsStep = 400;
constexpr int kNoticeX = 300;
// Left of the slip: the terms and the notice may stand at its height.
constexpr int kTermsRight = kLabelX - 200, kNoticeRight = 7600;
constexpr int kNoticeOffset = 1500, kNoticeGap = 450;
constexpr int kSlipX = 7800, kSlipY = 13300, kSlipWidth = 3500, kSlipHeight = 2000;
constexpr int kSlipStep = 300;
constexpr int kFooterY = 15500, kFooterStep = 500;
constexpr int kPageNumberY = 16350;
// The lowest a table may end: above the footer on a full page, above the
// totals, notice and slip on the last one; the closing part never runs into
// the footer.
constexpr int kLastTableBottom = 12000;
constexpr int kFullTableBottom = 15200;
constexpr int kClosingBottom = 15350;
constexpr int kNextPageHeadY = 2500;
constexpr int kMinFirstHeadY = 5000;
// When the rows do not all fit above the totals, at least this many of them
// (all but one of fewer) are carried to the last page, so the totals never
// stand under an empty table.
constexpr int kRowsCarriedToLastPage = 5;

const QColor kBlue(0, 0, 255);
const QColor kBlack(0, 0, 0);

// Font sizes along the page.
constexpr int kTitleSize = 12, kIssuerSize = 9, kCancelledSize = 11, kClientSize = 11,
              kBilledSize = 12, kCompetitionSize = 10, kHeadSize = 10, kRowSize = 10,
              kTotalsSize = 12, kTermsSize = 10, kNoticeSize = 8, kSlipSize = 10,
              kFooterNameSize = 14, kFooterSize = 12, kPageNumberSize = 9;
constexpr int kSmallestSize = 6;
// Below this a slip line is no longer read: a longer text is cut.
constexpr int kSmallestSlipSize = 5;

enum class Weight { Normal, Bold };

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

// Sized in twips (a point is 20), so that a painter drawing in twips gets the
// same letters on a 1440 dpi PDF and on a printer it scales to. Outlines
// only: hinting is for screens, and running the font's hinting program for
// every glyph of every document is most of a document's cost.
//
// Bold is drawn from the regular face, emboldened: the PDF then carries one
// font, not two. Each font a document embeds costs its reverse character map
// (the whole Unicode plane looked up) and its glyphs' outlines, about a
// third of a one-page invoice; the bold strokes are drawn in a span that
// text extraction skips, so the words read back once.
QFont makeFont(int size, Weight weight) {
    QFont f(fontFamily());
    f.setPixelSize(size * 20);
    f.setStyleName(QStringLiteral("Regular"));
    f.setBold(weight == Weight::Bold);
    f.setStyleStrategy(
        QFont::StyleStrategy(QFont::PreferOutline | QFont::ForceOutline | QFont::PreferNoShaping));
    f.setHintingPreference(QFont::PreferNoHinting);
    f.setKerning(false);
    return f;
}

QFont documentFont(int size, Weight weight) {
    static QMutex mutex;
    static QHash<int, QFont> fonts;
    const int key = size * 2 + (weight == Weight::Bold ? 1 : 0);
    QMutexLocker lock(&mutex);
    auto it = fonts.find(key);
    if (it == fonts.end()) it = fonts.insert(key, makeFont(size, weight));
    return *it;
}

// The longest start of `text` no wider than `width` (one character at least).
int fittingLength(const QFontMetrics& fm, const QString& text, int width) {
    int lo = 1, hi = static_cast<int>(text.size());
    while (lo < hi) {
        const int mid = (lo + hi + 1) / 2;
        if (fm.horizontalAdvance(text.left(mid)) <= width)
            lo = mid;
        else
            hi = mid - 1;
    }
    return lo;
}

// Draws text whose top stands at y, as the layout gives positions.
class Page {
  public:
    explicit Page(QPainter& p) : m_p(p) {}
    void font(int size, const QColor& colour = kBlack, Weight weight = Weight::Normal) {
        m_p.setFont(documentFont(size, weight));
        m_p.setPen(colour);
    }
    void bold(int size, const QColor& colour = kBlack) { font(size, colour, Weight::Bold); }
    void text(int x, int y, const QString& t) {
        m_p.drawText(QPointF(x, y + m_p.fontMetrics().ascent()), t);
    }
    // Lines drawn from y on, `step` apart; returns where the next line would stand.
    int lines(int x, int y, const QStringList& ls, int step) {
        for (const QString& l : ls) {
            text(x, y, l);
            y += step;
        }
        return y;
    }
    void rightAligned(int right, int y, const QString& t) { text(right - width(t), y, t); }
    void centred(int y, const QString& t) { text((kPageWidth - width(t)) / 2, y, t); }
    int width(const QString& t) const { return m_p.fontMetrics().horizontalAdvance(t); }
    int lineHeight() const { return m_p.fontMetrics().height(); }
    // The text in lines no wider than `width` in the current font, broken
    // between words, or inside a word longer than the width: nothing is lost.
    QStringList wrap(const QString& text, int width) const {
        const QFontMetrics fm = m_p.fontMetrics();
        if (fm.horizontalAdvance(text) <= width) return {text};
        QStringList out;
        QString line;
        for (const QString& word : text.split(QChar(' '), Qt::SkipEmptyParts)) {
            const QString candidate = line.isEmpty() ? word : line + QChar(' ') + word;
            if (fm.horizontalAdvance(candidate) <= width) {
                line = candidate;
                continue;
            }
            if (!line.isEmpty()) out << line;
            line = word;
            while (line.size() > 1 && fm.horizontalAdvance(line) > width) {
                const int n = fittingLength(fm, line, width);
                out << line.left(n);
                line = line.mid(n);
            }
        }
        if (!line.isEmpty() || out.isEmpty()) out << line;
        return out;
    }
    QPainter& painter() { return m_p; }

  private:
    QPainter& m_p;
};

// Every text of the document that may take more than one line, broken into
// its lines, and where the parts of the first page then stand.
struct Laid {
    bool client = false;
    QStringList issuerName, issuer;
    int issuerSize = kIssuerSize;
    QStringList cancelled;
    QStringList clientLines;  // "Client concerné : …" then the party's lines
    QStringList billedLines;  // the party's lines under "Adresse de facturation :"
    int competitionY = kCompetitionY;
    QStringList competition, internalRef;
    std::vector<QStringList> rows;
    std::vector<int> rowHeights;
    // The closing part under the totals, left column: mentions and terms.
    std::vector<QStringList> terms;
    std::vector<QStringList> notice;
    int noticeOffset = kNoticeOffset;  // from the totals' top
    int closingExtent = 0;             // from the table's bottom to the end of the notice
    int firstHeadY = kMinFirstHeadY;
};

QStringList wrapEach(Page& page, const QStringList& texts, int width) {
    QStringList out;
    for (const QString& t : texts) out << page.wrap(t, width);
    return out;
}

int paragraphsHeight(const std::vector<QStringList>& paragraphs, int step, int wrapStep) {
    int h = 0;
    for (const QStringList& p : paragraphs) h += step + static_cast<int>(p.size() - 1) * wrapStep;
    return h;
}

Laid layOut(Page& page, const InvoiceDocumentData& doc, const DocumentSettings& s) {
    Laid l;
    l.client = showsClientBlock(doc.account, s);
    const Letterhead& head = s.letterhead;

    // The issuer beside the logo, its name two sizes up: smaller letters
    // rather than lines lost.
    const int issuerWidth = kIssuerRight - kIssuerX;
    for (int size = kIssuerSize; size >= kSmallestSize; --size) {
        page.bold(size + 2);
        l.issuerName = page.wrap(head.name.trimmed(), issuerWidth);
        const int nameHeight = static_cast<int>(l.issuerName.size()) * page.lineHeight();
        page.font(size);
        l.issuer = wrapEach(page, head.issuerLines(), issuerWidth);
        l.issuerSize = size;
        if (kIssuerY + nameHeight + l.issuer.size() * page.lineHeight() <= kIssuerBottom) break;
    }

    if (doc.creditNote && !doc.cancelledNumber.isEmpty()) {
        page.font(kCancelledSize);
        l.cancelled = page.wrap(
            QStringLiteral("Avoir sur facture N° BOW") + doc.cancelledNumber +
                (doc.cancelledDate.isEmpty() ? QString()
                                             : QStringLiteral(" du ") + doc.cancelledDate),
            kPageWidth - kTitleX - 300);
    }

    int rightBottom = 0;
    if (l.client) {
        page.font(kClientSize);
        const int width = kPageWidth - kClientX - 400;
        l.clientLines = page.wrap(QStringLiteral("Client concerné : ") + doc.clientAccount, width);
        l.clientLines << wrapEach(page, doc.client, width);
        rightBottom = kBlocksY + static_cast<int>(l.clientLines.size() - 1) * kLineStep + 250;
        l.competitionY = std::max(kCompetitionY, rightBottom + 150);
    }
    page.font(kBilledSize);
    l.billedLines = wrapEach(page, doc.billed, kClientX - kBilledX - 200);
    const int billedBottom = kBlocksY + static_cast<int>(l.billedLines.size()) * kLineStep + 250;

    page.font(kCompetitionSize);
    const int width = kPageWidth - kCompetitionX - 300;
    l.competition = page.wrap(QStringLiteral("Compétition : ") + doc.competitionTitle +
                                  QStringLiteral(" du ") + doc.competitionDate,
                              width);
    l.internalRef = page.wrap(
        QStringLiteral("N° Interne : ") +
            QStringList{QStringLiteral("BW"), doc.season, doc.code1, doc.code2}.join(QChar('-')),
        width);
    const int refY = l.competitionY + kCompetitionStep +
                     static_cast<int>(l.competition.size() - 1) * kWrapStep + kCompetitionStep;
    rightBottom =
        std::max(rightBottom, refY + static_cast<int>(l.internalRef.size() - 1) * kWrapStep + 250);
    l.firstHeadY = std::max({kMinFirstHeadY, billedBottom + 400, rightBottom + 400});

    page.font(kRowSize);
    for (const StoredLine& line : doc.lines) {
        l.rows.push_back(page.wrap(line.text, kRules[0] - kTextX - 100));
        l.rowHeights.push_back(kLineStep + static_cast<int>(l.rows.back().size() - 1) * kWrapStep);
    }

    // Under the totals: the VAT mention, the terms, then on invoices the
    // late-payment mentions; the payment notice below them.
    page.font(kTermsSize);
    QStringList terms;
    terms << head.vatMention << QStringLiteral("Mode de règlement : à réception")
          << QStringLiteral("Date échéance : ") + doc.dueDate;
    if (!doc.creditNote) terms << head.latePenalties << head.recoveryFee;
    for (const QString& t : terms)
        if (!t.trimmed().isEmpty())
            l.terms.push_back(page.wrap(t.trimmed(), kTermsRight - kNoticeX));
    const int termsEnd = 300 + paragraphsHeight(l.terms, 250, kWrapStep);
    int closing = termsEnd;
    if (!doc.creditNote) {
        page.font(kNoticeSize);
        const int noticeWidth = kNoticeRight - kNoticeX;
        for (const QString& t :
             {head.paymentOrder, head.transferNotice,
              QStringLiteral("Domiciliation : ") + head.bank, QStringLiteral("IBAN : ") + head.iban,
              QStringLiteral("BIC : ") + head.bic})
            l.notice.push_back(page.wrap(t, noticeWidth));
        l.noticeOffset = std::max(kNoticeOffset, termsEnd + kNoticeGap - 250);
        closing = l.noticeOffset + paragraphsHeight(l.notice, 300, kSmallWrapStep);
    }
    // The totals' top stands 100 below the table.
    l.closingExtent = 100 + closing;
    return l;
}

void paintBackgroundAndTitle(Page& page, const InvoiceDocumentData& doc, const DocumentSettings& s,
                             const Laid& l) {
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
    page.bold(l.issuerSize + 2, kBlue);
    int y = kIssuerY;
    for (const QString& line : l.issuerName) {
        page.text(kIssuerX, y, line);
        y += page.lineHeight();
    }
    page.font(l.issuerSize);
    for (const QString& line : l.issuer) {
        page.text(kIssuerX, y, line);
        y += page.lineHeight();
    }

    page.bold(kTitleSize, kBlue);
    page.text(kTitleX, kTitleY,
              (doc.creditNote ? QStringLiteral("AVOIR N° BOW") : QStringLiteral("FACTURE N° BOW")) +
                  doc.number + QStringLiteral(" du ") + doc.date);
    if (!l.cancelled.isEmpty()) {
        page.font(kCancelledSize);
        page.lines(kTitleX, kCancelledY, l.cancelled, kWrapStep);
    }
}

void paintFooter(Page& page, const DocumentSettings& s, int pageNumber, int pageCount) {
    page.bold(kFooterNameSize, kBlue);
    page.centred(kFooterY, s.letterhead.name);
    page.font(kFooterSize);
    const QString line = s.letterhead.footerLine();
    // A long address steps down rather than run off the page.
    int size = kFooterSize;
    while (size > kSmallestSize && page.width(line) > kTableRight - kTableLeft) page.font(--size);
    const QStringList lines = page.wrap(line, kTableRight - kTableLeft);
    int y = kFooterY + kFooterStep;
    for (const QString& l : lines) {
        page.centred(y, l);
        y += page.lineHeight();
    }
    if (pageCount > 1) {
        page.font(kPageNumberSize);
        page.centred(std::max(kPageNumberY, y + 50),
                     QStringLiteral("Page %1 / %2").arg(pageNumber).arg(pageCount));
    }
}

void paintTableFrame(Page& page, int headY, int rowsHeight) {
    QPainter& p = page.painter();
    const int top = headY - 150;
    const int bottom = headY + kFirstRowOffset + rowsHeight;
    p.setPen(QPen(kBlack, 15));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRect(kTableLeft, top, kTableRight - kTableLeft, bottom - top));
    for (int x : kRules) p.drawLine(x, top, x, bottom);
    p.drawLine(kTableLeft, headY + 350, kTableRight, headY + 350);
    page.bold(kHeadSize);
    const QString heads[] = {QStringLiteral("DESIGNATION"), QStringLiteral("Quantité"),
                             QStringLiteral("P.U."), QStringLiteral("Montant HT")};
    for (int i = 0; i < 4; ++i) page.text(kHeadX[i], headY, heads[i]);
}

// Draws the rows from `from`, `count` of them; returns the table's bottom.
int paintRows(Page& page, int headY, const InvoiceDocumentData& doc, const Laid& l, size_t from,
              size_t count) {
    page.font(kRowSize);
    int y = headY + kFirstRowOffset;
    for (size_t i = from; i < from + count; ++i) {
        const StoredLine& line = doc.lines[i];
        page.lines(kTextX, y, l.rows[i], kWrapStep);
        // A free-text line carries only its text and its amount.
        if (line.article != kFreeTextArticle) {
            page.text(kQuantityX, y, format::countPlain(line.quantity));
            page.rightAligned(kUnitPriceRight, y, format::amountEuroPlain(line.unitPrice));
        }
        page.rightAligned(kAmountRight, y, format::amountEuro(line.amount));
        y += l.rowHeights[i];
    }
    return y;
}

void paintAddresses(Page& page, const Laid& l) {
    if (l.client) {
        page.font(kClientSize);
        page.lines(kClientX, kBlocksY, l.clientLines, kLineStep);
    }
    page.bold(kBilledSize);
    page.text(kBilledX, kBlocksY, QStringLiteral("Adresse de facturation :  "));
    page.font(kBilledSize);
    page.lines(kBilledX, kBlocksY + kLineStep, l.billedLines, kLineStep);

    page.font(kCompetitionSize, kBlue);
    page.text(kCompetitionX, l.competitionY, QStringLiteral("Discipline : Bowling"));
    page.font(kCompetitionSize);
    const int refY =
        page.lines(kCompetitionX, l.competitionY + kCompetitionStep, l.competition, kWrapStep) -
        kWrapStep + kCompetitionStep;
    page.lines(kCompetitionX, refY, l.internalRef, kWrapStep);
}

// One line of the slip in its box: smaller letters until it fits, then two
// (or more) smaller lines in the height of one, then, for a text no size
// can hold, the lines that fit with the last one cut by "…". It never runs
// into the next line of the slip ("Facture N° : …" must stay readable).
void slipLine(Page& page, int x, int y, const QString& text, int width,
              Weight weight = Weight::Normal) {
    for (int size = kSlipSize; size >= kSmallestSize; --size) {
        page.font(size, kBlack, weight);
        if (page.width(text) <= width) return page.text(x, y, text);
    }
    for (int size = kSmallestSize; size >= kSmallestSlipSize; --size) {
        page.font(size, kBlack, weight);
        QStringList lines = page.wrap(text, width);
        const qsizetype room = std::max(1, kSlipStep / page.lineHeight());
        if (lines.size() > room && size > kSmallestSlipSize) continue;
        if (lines.size() > room) {
            const QString rest = lines[room - 1] + QChar(' ') + lines[room];
            lines = lines.first(room);
            lines.last() = page.painter().fontMetrics().elidedText(rest, Qt::ElideRight, width);
        }
        int ly = y;
        for (const QString& line : lines) {
            page.text(x, ly, line);
            ly += page.lineHeight();
        }
        return;
    }
}

void paintTotalsAndSlip(Page& page, const InvoiceDocumentData& doc, int tableBottom,
                        const Laid& l) {
    QPainter& p = page.painter();
    const Money total = doc.total();
    const Money net = doc.creditNote ? total : total - doc.deposit;
    const int t = tableBottom + 100;
    // The sum closes the amount column.
    p.setPen(QPen(kBlack, 15));
    p.drawRect(QRect(kRules[2], tableBottom, kTableRight - kRules[2], 400));
    page.bold(kTotalsSize);
    page.rightAligned(kAmountRight, t, format::amountEuro(total));
    int y = t;
    if (!doc.creditNote) {
        page.font(kTotalsSize);
        page.text(kLabelX, y += kTotalsStep, QStringLiteral("Acompte versé :"));
        page.rightAligned(kTotalsRight, y, format::amountEuro(doc.deposit));
    }
    page.bold(kTotalsSize);
    page.text(kLabelX, y += kTotalsStep, QStringLiteral("Net à Payer :"));
    page.rightAligned(kTotalsRight, y, format::amountEuro(net));

    page.font(kTermsSize);
    y = t + 300;
    for (const QStringList& term : l.terms)
        y = page.lines(kNoticeX, y, term, kWrapStep) - kWrapStep + 250;

    if (!doc.creditNote) {
        y = t + l.noticeOffset;
        for (size_t i = 0; i < l.notice.size(); ++i) {
            // The first notice in blue, as the federation's own word.
            page.font(kNoticeSize, i == 0 ? kBlue : kBlack);
            y = page.lines(kNoticeX, y, l.notice[i], kSmallWrapStep) - kSmallWrapStep + 300;
        }
    }

    p.setPen(QPen(kBlack, 15));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRect(kSlipX, kSlipY, kSlipWidth, kSlipHeight));
    const int x = kSlipX + 100;
    const int w = kSlipWidth - 200;
    slipLine(page, x, kSlipY + 150, QStringLiteral("Coupon à joindre à votre règlement"), w,
             Weight::Bold);
    slipLine(page, x, kSlipY + 500, QStringLiteral("Client : ") + doc.billedName, w);
    slipLine(page, x, kSlipY + 800,
             (doc.creditNote ? QStringLiteral("Avoir N° : ") : QStringLiteral("Facture N° : ")) +
                 doc.number,
             w);
    slipLine(page, x, kSlipY + 1100, QStringLiteral("Date facture : ") + doc.date, w);
    slipLine(page, x, kSlipY + 1400, QStringLiteral("Date échéance : ") + doc.dueDate, w);
    slipLine(page, x, kSlipY + 1700, QStringLiteral("Montant : ") + format::amountEuro(net), w);
}

}  // namespace

std::vector<int> paginateRows(const std::vector<int>& rowHeights, int firstPageHeadY,
                              int lastTableBottom) {
    std::vector<int> pages;
    const int count = static_cast<int>(rowHeights.size());
    int from = 0;
    int headY = firstPageHeadY;
    // How many rows from `from` end above `bottom` (one at least: a row taller
    // than a page still goes somewhere).
    const auto fitting = [&](int bottom) {
        int y = headY + kFirstRowOffset;
        int n = 0;
        while (from + n < count && y + rowHeights[size_t(from + n)] <= bottom)
            y += rowHeights[size_t(from + n++)];
        return std::max(1, n);
    };
    while (true) {
        const int remaining = count - from;
        if (remaining <= fitting(lastTableBottom)) {
            pages.push_back(remaining);
            return pages;
        }
        // Fill the page, but carry a few rows over to stand above the totals.
        const int take =
            std::max(1, std::min(fitting(kFullTableBottom),
                                 remaining - std::min(kRowsCarriedToLastPage, remaining - 1)));
        pages.push_back(take);
        from += take;
        headY = kNextPageHeadY;
    }
}

std::vector<int> paginateLines(int lineCount, int firstPageHeadY) {
    return paginateRows(std::vector<int>(static_cast<size_t>(std::max(0, lineCount)), kLineStep),
                        firstPageHeadY, kLastTableBottom);
}

void paintInvoiceDocument(QPainter& painter, QPagedPaintDevice& device,
                          const InvoiceDocumentData& doc, const DocumentSettings& s) {
    Page page(painter);
    const Laid l = layOut(page, doc, s);
    const int lastBottom = std::min(kLastTableBottom, kClosingBottom - l.closingExtent);
    const std::vector<int> pages = paginateRows(l.rowHeights, l.firstHeadY, lastBottom);
    const int pageCount = static_cast<int>(pages.size());
    size_t from = 0;
    for (int i = 0; i < pageCount; ++i) {
        if (i > 0) device.newPage();
        paintBackgroundAndTitle(page, doc, s, l);
        const int y = i == 0 ? l.firstHeadY : kNextPageHeadY;
        if (i == 0) paintAddresses(page, l);
        const auto count = static_cast<size_t>(pages[size_t(i)]);
        const int rowsHeight = std::accumulate(l.rowHeights.begin() + long(from),
                                               l.rowHeights.begin() + long(from + count), 0);
        paintTableFrame(page, y, rowsHeight);
        const int bottom = paintRows(page, y, doc, l, from, count);
        from += count;
        if (i + 1 == pageCount) paintTotalsAndSlip(page, doc, bottom, l);
        paintFooter(page, s, i + 1, pageCount);
    }
}

}  // namespace orve::invoicing
