#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "ImportTestSupport.h"
#include "imports/ImportFile.h"
#include "store/Refusal.h"

using namespace orve;
using namespace orve::imports;

namespace {

QStringList texts(const ImportFile& f) {
    QStringList out;
    for (const auto& l : f.lines()) out << QString::number(l.number) + ':' + l.text;
    return out;
}

}  // namespace

TEST(ImportFile, EncodingIsFoundPerFileAndLineEndsDoNotMatter) {
    const QString text = QStringLiteral("Société Générale;Théo;Œuvre à 12 €\r\nÉtang;Noël\r\n\r\n");
    const ImportFile utf8 = ImportFile::fromBytes(text.toUtf8());
    const ImportFile bom = ImportFile::fromBytes("\xEF\xBB\xBF" + text.toUtf8());
    QByteArray cp1252 = text.toLatin1();
    // Œ and € are outside Latin-1: their Windows-1252 bytes.
    cp1252.replace(QByteArray("?uvre"), QByteArray("\x8Cuvre"));
    cp1252.replace(QByteArray("12 ?"), QByteArray("12 \x80"));
    const ImportFile windows = ImportFile::fromBytes(cp1252);
    QString lf = text;
    lf.remove('\r');
    const ImportFile lfOnly = ImportFile::fromBytes(lf.toUtf8());

    EXPECT_EQ(utf8.encoding(), TextEncoding::Utf8);
    EXPECT_EQ(bom.encoding(), TextEncoding::Utf8WithBom);
    EXPECT_EQ(windows.encoding(), TextEncoding::Windows1252);
    EXPECT_EQ(windows.encodingName(), "Windows-1252");
    const QStringList expected{QStringLiteral("1:Société Générale;Théo;Œuvre à 12 €"),
                               QStringLiteral("2:Étang;Noël")};
    // The blank last line is no line; the BOM is no character of the first.
    for (const ImportFile* f : {&utf8, &bom, &windows, &lfOnly}) EXPECT_EQ(texts(*f), expected);

    EXPECT_TRUE(ImportFile::fromBytes("").lines().empty());
    EXPECT_TRUE(ImportFile::fromBytes("\r\n\r\n").lines().empty());
    // A blank line inside the file keeps its place.
    EXPECT_EQ(texts(ImportFile::fromBytes("a\n\nb\n")), (QStringList{"1:a", "2:", "3:b"}));
}

TEST(ImportFile, LastFieldIsTheRestOfTheLineAndQuotesAreRemoved) {
    // Four fields: the fourth takes whatever follows the third ";".
    EXPECT_EQ(ImportFile::fields("a;b;c;d;e", 4), (QStringList{"a", "b", "c", "d;e"}));
    // Fewer ";" than fields: the text after the last one is the last field.
    EXPECT_EQ(ImportFile::fields("x", 4), (QStringList{"", "", "", "x"}));
    EXPECT_EQ(ImportFile::fields("1;2", 4), (QStringList{"1", "", "", "2"}));
    const QStringList club = ImportFile::fields("75;12;C;Nom", 25);
    ASSERT_EQ(club.size(), 25);
    EXPECT_EQ(club[2], "C");
    EXPECT_EQ(club[3], "");
    EXPECT_EQ(club[24], "Nom");
    // Blanks around a field are not part of it; quotes go, ";" inside them stays.
    EXPECT_EQ(ImportFile::fields(" \"Club ; des \"\"amis\"\"\" ; 12 ;\"D1\"", 3),
              (QStringList{"Club ; des \"amis\"", "12", "D1"}));
    // A quote never closed is plain text.
    EXPECT_EQ(ImportFile::fields("\"abc;def", 2), (QStringList{"\"abc", "def"}));
    EXPECT_EQ(ImportFile::fields("", 3), (QStringList{"", "", ""}));
}

TEST(ImportFile, AFileThatCannotBeReadIsRefusedByName) {
    QTemporaryDir dir;
    const auto refusal = [](const QString& path) {
        try {
            ImportFile::read(path);
        } catch (const Refusal& r) {
            return r.message();
        }
        return QString();
    };
    EXPECT_EQ(refusal(dir.filePath("absent.csv")),
              QStringLiteral("Le fichier %1 est introuvable.").arg(dir.filePath("absent.csv")));
    EXPECT_TRUE(refusal(dir.path()).startsWith("Le fichier")) << refusal(dir.path()).toStdString();
    EXPECT_TRUE(refusal("").startsWith("Aucun fichier n'est choisi"));
    const QString path = test::writeFile(dir, "ok.csv", "a;b\n");
    EXPECT_EQ(ImportFile::read(path).lines().size(), 1u);
    EXPECT_EQ(ImportFile::read(path).path(), path);
}
