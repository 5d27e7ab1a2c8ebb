// SPDX-License-Identifier: MIT
#include "lmcommon/cecryptography.h"

#include <gtest/gtest.h>

namespace {

TEST(Cryptography, GivesBackWhatItWasGiven) {
    QString all;
    for (unsigned int unit = 0; unit <= 0xFFFF; ++unit) all.append(QChar(static_cast<ushort>(unit)));
    for (const QString& text :
         {QString(""), QString("a"), QString("senha: ação Ω"), QString(100000, 'x'), all})
        EXPECT_EQ(text, CECryptography().decrypt(CECryptography().crypt(text)));
}

TEST(Cryptography, WritesPlainAsciiFitForAnAttribute) {
    const QString stored = CECryptography().crypt(QStringLiteral("ação <&\"'>"));
    EXPECT_TRUE(stored.startsWith("LM1:"));
    for (const QChar unit : stored)
        EXPECT_TRUE(unit == ':' || unit == '+' || unit == '/' || unit == '=' ||
                    (unit.unicode() < 0x80 && unit.isLetterOrNumber()))
            << static_cast<unsigned int>(unit.unicode());
    EXPECT_FALSE(stored.contains("ação"));
}

TEST(Cryptography, NeverWritesTheSameTwice) {
    EXPECT_NE(CECryptography().crypt("same"), CECryptography().crypt("same"));
    EXPECT_NE(CECryptography().crypt(""), CECryptography().crypt(""));
}

TEST(Cryptography, GivesTheEmptyTextForEmptyAndForeignText) {
    for (const char* text : {"", "plain", "LM1:", "LM1:AAAA", "LM1:****", "LM2:AAAA", "lm1:AAAA",
                             "LM1:AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"})
        EXPECT_EQ(QString(), CECryptography().decrypt(text)) << text;
    EXPECT_EQ(QString(), CECryptography().decrypt(QString("LM1:") + QChar(0x3A9)));
}

TEST(Cryptography, NoticesEveryChangedLetter) {
    const QString stored = CECryptography().crypt("password");
    for (qsizetype i = 0; i < stored.size(); ++i) {
        if (stored[i] == '=') continue;
        QString changed = stored;
        changed[i] = stored[i] == 'A' ? 'B' : 'A';
        EXPECT_EQ(QString(), CECryptography().decrypt(changed)) << i;
    }
    EXPECT_EQ(QString(), CECryptography().decrypt(stored.left(stored.size() - 4)));
    EXPECT_EQ(QString(), CECryptography().decrypt(stored + "AAAA"));
}

TEST(Cryptography, NoticesBitsThatBelongToNoByte) {
    const QByteArray letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    // Behind 28 bytes and two for each unit: where one byte is left over, 4 bits of the last letter go
    // unused, and where two are, 2 bits.
    for (const auto& [length, unused] :
         {std::pair{0, 4}, std::pair{3, 4}, std::pair{2, 2}, std::pair{5, 2}}) {
        const QString stored = CECryptography().crypt(QString(length, 'x'));
        const qsizetype last = stored.indexOf('=') - 1;
        ASSERT_EQ(stored.size() - last - 1, unused / 2) << length;
        const auto value = letters.indexOf(stored[last].toLatin1());
        for (int bits = 1; bits < 1 << unused; ++bits) {
            QString changed = stored;
            changed[last] = QLatin1Char(letters[value ^ bits]);
            EXPECT_EQ(QString(), CECryptography().decrypt(changed)) << length << " " << bits;
        }
    }
}

} // namespace
