#include "formats/metafile/letters.h"

namespace pelorin::metafile {

namespace {

// The upper halves of the 8-bit pages; '_' stands for what has no shape.
using Page = std::u16string_view;
constexpr Page kWestern = u"€_‚ƒ„…†‡ˆ‰Š‹Œ_Ž__‘’“”•–—˜™š›œ_žŸ_¡¢£¤¥¦§¨©ª«¬_®¯°±²³´µ¶·¸¹º»¼½¾¿"
                          u"ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖ×ØÙÚÛÜÝÞßàáâãäåæçèéêëìíîïðñòóôõö÷øùúûüýþÿ";
constexpr Page kCentral = u"€_‚_„…†‡_‰Š‹ŚŤŽŹ_‘’“”•–—_™š›śťžź_ˇ˘Ł¤Ą¦§¨©Ş«¬_®Ż°±˛ł´µ¶·¸ąş»Ľ˝ľż"
                          u"ŔÁÂĂÄĹĆÇČÉĘËĚÍÎĎĐŃŇÓÔŐÖ×ŘŮÚŰÜÝŢßŕáâăäĺćçčéęëěíîďđńňóôőö÷řůúűüýţ˙";
constexpr Page kCyrillic = u"ЂЃ‚ѓ„…†‡€‰Љ‹ЊЌЋЏђ‘’“”•–—_™љ›њќћџ_ЎўЈ¤Ґ¦§Ё©Є«¬_®Ї°±Ііґµ¶·ё№є»јЅѕї"
                           u"АБВГДЕЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯабвгдежзийклмнопрстуфхцчшщъыьэюя";
constexpr Page kGreek = u"€_‚ƒ„…†‡_‰_‹_____‘’“”•–—_™_›_____΅Ά£¤¥¦§¨©_«¬_®―°±²³΄µ¶·ΈΉΊ»Ό½ΎΏ"
                        u"ΐΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟΠΡ_ΣΤΥΦΧΨΩΪΫάέήίΰαβγδεζηθικλμνξοπρςστυφχψωϊϋόύώ_";
constexpr Page kTurkish = u"€_‚ƒ„…†‡ˆ‰Š‹Œ____‘’“”•–—˜™š›œ__Ÿ_¡¢£¤¥¦§¨©ª«¬_®¯°±²³´µ¶·¸¹º»¼½¾¿"
                          u"ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏĞÑÒÓÔÕÖ×ØÙÚÛÜİŞßàáâãäåæçèéêëìíîïğñòóôõö÷øùúûüışÿ";
constexpr Page kBaltic = u"€_‚_„…†‡_‰_‹_¨ˇ¸_‘’“”•–—_™_›_¯˛___¢£¤_¦§Ø©Ŗ«¬_®Æ°±²³´µ¶·ø¹ŗ»¼½¾æ"
                         u"ĄĮĀĆÄÅĘĒČÉŹĖĢĶĪĻŠŃŅÓŌÕÖ×ŲŁŚŪÜŻŽßąįāćäåęēčéźėģķīļšńņóōõö÷ųłśūüżž˙";

// The letters of symbol faces from 0x20 on: Greek and the signs of mathematics.
constexpr Page kSymbols = u" !∀#∃%&∋()∗+,−./0123456789:;<=>?≅ΑΒΧΔΕΦΓΗΙϑΚΛΜΝΟΠΘΡΣΤΥςΩΞΨΖ[∴]⊥_"
                          u"‾αβχδεφγηιϕκλμνοπθρστυϖωξψζ{|}∼_"
                          u"________________________________"
                          u"€ϒ′≤⁄∞ƒ♣♦♥♠↔←↑→↓°±″≥×∝∂•÷≠≡≈…|—↵ℵℑℜ℘⊗⊕∅∩∪⊃⊇⊄⊂⊆∈∉"
                          u"∠∇®©™∏√⋅¬∧∨⇔⇐⇑⇒⇓◊〈®©™∑(|([|[{{{|_〉∫∫|∫)|)]|]}}}_";
static_assert(kWestern.size() == 128 && kCentral.size() == 128 && kCyrillic.size() == 128 && kGreek.size() == 128 &&
              kTurkish.size() == 128 && kBaltic.size() == 128 && kSymbols.size() == 256 - 32);

struct PageRow {
    int charSet;
    Page page;
};
constexpr PageRow kPages[] = {{161, kGreek}, {162, kTurkish}, {186, kBaltic}, {204, kCyrillic}, {238, kCentral}};

constexpr int kSymbolSet = 2, kJapanese = 128;
// Sets whose letters take two bytes: Japanese, Korean (two), Chinese (two).
constexpr int kDoubleSets[] = {kJapanese, 129, 130, 134, 136};
constexpr char32_t kSomeWideLetter = 0x3013, kNothing = 0x200B, kMissing = U'_';
constexpr std::uint16_t kPrivate = 0xF000;

char32_t ShapeOf(Page page, std::size_t at) {
    return page[at] == kMissing ? kNothing : char32_t{page[at]};
}

bool IsLead(int charSet, std::uint8_t byte) {
    if (byte < 0x81 || byte > 0xFE) return false;
    return charSet != kJapanese || byte < 0xA0 || byte >= 0xE0;
}

char32_t SymbolLetter(const Font& font, unsigned number) {
    if (number < 0x20) return kNothing;
    // Pictures of other symbol faces are mostly bullets of lists.
    if (!font.greek) return number == 0x20 ? U' ' : number == 0xFC ? U'✓' : number == 0xA8 ? U'□' : U'•';
    return number == U'_' ? U'_' : ShapeOf(kSymbols, number - 0x20);
}

Page PageOf(int charSet) {
    for (const auto& row : kPages) {
        if (row.charSet == charSet) return row.page;
    }
    return kWestern;
}

} // namespace

std::u32string LettersOfBytes(ByteSpan bytes, const Font& font) {
    std::u32string letters;
    const bool twoBytes = std::ranges::find(kDoubleSets, font.charSet) != std::end(kDoubleSets);
    const auto page = PageOf(font.charSet);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = bytes[i];
        if (font.charSet == kSymbolSet) {
            letters.push_back(SymbolLetter(font, byte));
        } else if (twoBytes && IsLead(font.charSet, byte)) {
            // A letter keeps two places, so that the advances in the file fit.
            letters.push_back(kSomeWideLetter);
            if (++i < bytes.size()) letters.push_back(kNothing);
        } else {
            letters.push_back(byte < 0x80 || byte == 0xA0 || byte == 0xAD ? byte : ShapeOf(page, byte - 0x80u));
        }
    }
    return letters;
}

std::u32string LettersOfUnits(std::span<const std::uint16_t> units, const Font& font) {
    std::u32string letters;
    for (std::size_t i = 0; i < units.size(); ++i) {
        const auto unit = units[i];
        const bool own = unit >= kPrivate && unit <= kPrivate + 0xFF;
        if (own || (font.charSet == kSymbolSet && unit <= 0xFF)) {
            letters.push_back(own && font.charSet != kSymbolSet ? char32_t{unit} - kPrivate
                                                                : SymbolLetter(font, unit & 0xFFu));
        } else if (unit >= 0xD800 && unit < 0xDC00 && i + 1 < units.size() && units[i + 1] >= 0xDC00 &&
                   units[i + 1] < 0xE000) {
            letters.push_back(0x10000 + ((unit & 0x3FFu) << 10) + (units[i + 1] & 0x3FFu));
            letters.push_back(kNothing);
            ++i;
        } else {
            letters.push_back(unit);
        }
    }
    return letters;
}

std::u32string LettersOfGlyphs(std::span<const std::uint16_t> numbers) {
    constexpr std::uint16_t kBlank = 3, kLast = 97;
    std::u32string letters;
    for (const auto number : numbers) {
        letters.push_back(number < kBlank || number > kLast ? kNothing : char32_t{number} - kBlank + U' ');
    }
    return letters;
}

} // namespace pelorin::metafile
