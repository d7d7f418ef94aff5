#include "calls/text/best_fit.h"

#include <string_view>

namespace platform {
namespace {

// Bits of the code pages that a line of the tables belongs to.
enum Pages : unsigned {
    page_1250 = 1u << 0,
    page_1251 = 1u << 1,
    page_1252 = 1u << 2,
    page_932 = 1u << 3,
    page_936 = 1u << 4,
    page_949 = 1u << 5,
    page_950 = 1u << 6,
};

unsigned page_bit(std::uint32_t code_page) {
    switch (code_page) {
    case 1250:
        return page_1250;
    case 1251:
        return page_1251;
    case 1252:
        return page_1252;
    case 932:
        return page_932;
    case 936:
        return page_936;
    case 949:
        return page_949;
    case 950:
        return page_950;
    default:
        return 0;
    }
}

// The characters from `first` to `last` become those from `written` on.
struct Run {
    unsigned pages;
    char16_t first, last, written;
};

constexpr Run runs[] = {
    {page_1250 | page_1251 | page_1252, 0xFF01, 0xFF1E, u'!'},
    {page_1250 | page_1251 | page_1252, 0xFF20, 0xFF5E, u'@'},
    {page_1250 | page_1252, 0x2074, 0x2078, u'4'},
    {page_1250 | page_1252, 0x2080, 0x2089, u'0'},
    {page_949, 0x1109, 0x1112, u'ㅅ'},
    {page_949, 0x112B, 0x112F, u'ㅸ'},
    {page_949, 0x1161, 0x1175, u'ㅏ'},
    {page_949, 0x11A8, 0x11AE, u'ㄱ'},
    {page_949, 0x11AF, 0x11B8, u'ㄹ'},
    {page_949, 0x11B9, 0x11BD, u'ㅄ'},
    {page_949, 0x11BE, 0x11C2, u'ㅊ'},
    {page_949, 0x24B6, 0x24CF, u'ⓐ'},
    {page_949, 0xFFA1, 0xFFBE, u'ㄱ'},
    {page_949, 0xFFC2, 0xFFC7, u'ㅏ'},
    {page_949, 0xFFCA, 0xFFCF, u'ㅕ'},
    {page_949, 0xFFD2, 0xFFD7, u'ㅛ'},
};

// Groups with a blank between: a letter, which may be a blank itself, and behind it all that become it. What
// stands as a number would be changed by normalizing this file, or join its neighbour on the screen.
struct Groups {
    unsigned pages;
    std::u16string_view text;
};

constexpr Groups groups[] = {
    {page_1250 | page_1251 | page_1252,
     u"+├┼╬ AĀǍǞ CĈĊ EĒĔĖ GĜĞĠĢǤǦ HĤĦ IĨĪĬĮİƗǏ JĴ KĶǨ LĻ NŅ OŌŎƟƠǑǪǬ RŖ SŜ TŦƮ UŨŪŬŲƯǓǕǗǙǛ WŴ YŶ "
     u"aāǎǟ bƀ cĉċ eēĕė gĝğġģǥǧ hĥħ iĩīĭįǐ jĵǰ kķǩ lļƚ nņ oōŏơǒǫǭ rŗ sŝ tŧƫ uũūŭųưǔǖǘǚǜ wŵ yŷ "
     u"¦⌂║╠╣■"},
    {page_1250 | page_1251, u"!‼ +┤┴♀ -↔┌┘╝▀▄█░▒▓▬ 0○◙☼ <◄ =═ >►♂ L∟└╚ T┬╦ YŸ ^↑▲ d♪♫ ¦╩♠♣♥♦ ¬┐╗ •∙◘"},
    {page_1250 | page_1252,
     u" \u2000\u2001\u2002\u2003\u2004\u2005\u2006\u3000 !ǃ \"ʺ\u030E %٪ 'ʹʼˈ′ *∗ -‐‑− /⁄∕ :։∶ "
     u";\u037E <\u2329〈 >\u232A〉 Bℬ Cℂℭ Eℇℰ Fℱ Hℋℌℍ Iℐℑ K\u212A Lℒ Mℳ Nℕ P℘ℙ Qℚ Rℛℜℝ Zℤℨ [〚 \\∖ "
     u"]〛 ^˄\u0302⌃ _ˍ\u0331\u0332 `ˋ\u0300‵ e℮ℯ gɡℊ hһℎ iı lℓ oℴ zƶ |ǀ∣❘ ~\u0303∼ ¨\u0308 «≪《 "
     u"°˚\u030A⁰ ±∓ ´ˊ\u0301 µμ ·⋅・ ¸\u0327 »≫》 ßβ"},
    {page_1251 | page_1252,
     u"+╪╫ -─ AĂĄ CĆČ DĎ EĘĚ LĹĽŁ NŃŇ OŐ RŔŘ SŚŞ TŢŤ UŮŰ ZŹŻ aăą cćč dďđ eęě lĺľł nńň oő rŕř sśş "
     u"tţť uůű v√ zźż ¦│╞╟╡╢▌▐"},
    {page_1250, u"-│╔ 1¼½ 3¾ FƑ L£ OŒ Y¥ ^ˆ c¢ fƒ oœ |↕↨ ~˜ ¦─ ĐƉ Ĺ\u212B Ł₤ Ř∅ Żˉ\u0304\u0305 ˇ\u030C↓▼ "
                u"˘\u0306☺☻ ˙\u0307 —¯ー ‘ʻ❛ ’❜ “❝〝 ”″❞〞 „〟 •․ ‹← ›→"},
    {page_1251, u"-╒╛╜ <← >→ DĐ L╘╙ O☺☻ SŠ T╤╥ ZŽ sš v↓ zž ¦↕↨╧╨ ¬╕╖ Ў▼ г╓╔"},
    {page_1252,
     u"(⌠ )⌡ +┌┐└┘╒╓╔╕╖╗╘╙╚╛╜╝ -┬┴═╤╥╦╧╨╩ 8∞ =‗≡≤≥ FΦ GΓ OΩ P₧ SΣ TΘ _▄ aα dδ eε fφ nⁿ∩ pπ sσ tτ ¢₡ "
     u"£₤ ¤☼ ¦┤█░▒▓ ¬⌐ ¯ˉ\u0304▀ ·․∙ Å\u212B ÐĐƉ Ø∅ ƒƑ ˜≈"},
    {page_1250 | page_1251 | page_932 | page_949 | page_950,
     u"AÀÃÅ EÈÊ IÌÏ NÑ OÒÕ UÙÛ aàãå eèê iìï nñ oòõ uùû yÿ"},
    {page_1251 | page_932 | page_936 | page_949 | page_950, u"YÝ aâ yý"},
    {page_1250 | page_1251 | page_932 | page_950, u"OØ oø"},
    {page_1250 | page_1252 | page_936 | page_950, u"°∘"},
    {page_1250 | page_932 | page_936 | page_950, u"1¹ 2² 3³ aª oº"},
    {page_1251 | page_932 | page_949 | page_950, u"AÁÂÄ CÇ EÉË IÍÎ OÓÔÖ UÚÜ aáä cç eéë iíî oóôö uúü"},
    {page_1250 | page_932 | page_950, u"!¡ AÆ aæ"},
    {page_1252 | page_950, u"¯\u0305"},
    {page_932, u"\\¥ dð ヴゔ ・· ，¸ ￣¯"},
    {page_932 | page_936 | page_949 | page_950, u"|¦ μµ ￠¢ ￡£"},
    {page_932 | page_936 | page_950, u"-\u00AD DÐ TÞ tþ"},
    {page_932 | page_949, u"≪« ≫» ￢¬"},
    {page_932 | page_950, u"R® c© sß"},
    {page_936, u"àÀ áÁ èÈ éÉ êÊ ìÌ íÍ òÒ óÓ ùÙ úÚ üÜ āĀ ēĒ ěĚ īĪ ōŌ ūŪ ǎǍ ǐǏ ǒǑ ǔǓ ǖǕ ǘǗ ǚǙ ǜǛ ˉ¯ ′´ ∥ǁ 优㊝ "
               u"写㊢ 劳㈸㊘ 医㊩ 协㈿㊯ 学㈻㊫ 监㈼㊬ 财㈶㊖ 资㈾㊮ 适㊜ 项㊠ ～∼"},
    {page_936 | page_949 | page_950,
     u"一㆒㊀ 丁㆜ 七㊆ 三㆔㊂ 上㆖ 下㆘ 丙㆛ 中㆗ 乙㆚ 九㊈ 二㆓㊁ 五㊄ 人㆟ 代㈹ 企㈽㊭ 休㉁㊡ "
     u"八㊇ 六㊅ 凞\uFA15 十㊉ 名㈴㊔ 呼㈺ 四㆕㊃ 土㈯㊏ 地㆞ 塚\uFA10 夜㊰ 天㆝ 女㊛ 宗㊪ 日㈰㊐ "
     u"晴\uFA12 月㈪㊊ 有㈲㊒ 木㈭㊍ 株㊑ 水㈬㊌ 注㊟ 火㈫㊋ 特㈵㊕ 甲㆙ 男㊚ 益\uFA17 社㈳㊓ "
     u"祝㈷㊗ 神\uFA19 祥\uFA1A 祭㉀ 福\uFA1B 秘㊙ 精\uFA1D 羽\uFA1E 自㉂ 至㉃ 諸\uFA22 逸\uFA25 "
     u"都\uFA26 金㈮㊎ 靖\uFA1C 飯\uFA2A 飼\uFA2B 館\uFA2C 鶴\uFA2D ￥¥"},
    {page_936 | page_950,
     u"eð 不\uF967 串\uF905 丹\uF95E 亂\uF91B 了\uF9BA 亮\uF977 什\uF9FD 令\uF9A8 來\uF92D 例\uF9B5 "
     u"便\uF965 倫\uF9D4 僚\uF9BB 兩\uF978 六\uF9D1 冷\uF92E 凌\uF955 凜\uF954 切\uFA00 列\uF99C "
     u"利\uF9DD 刺\uF9FF 劉\uF9C7 力\uF98A 劣\uF99D 勒\uF952 勞\uF92F 勵\uF97F 北\uF963 匿\uF9EB "
     u"卵\uF91C 參\uF96B 句\uF906 吏\uF9DE 吝\uF9ED 呂\uF980 咽\uF99E 喇\uF90B 囹\uF9A9 塞\uF96C "
     u"壘\uF94A 壟\uF942 奈\uF90C 契\uF909 女\uF981 宅\uFA04 寧\uF95F\uF9AA 寮\uF9BC 尿\uF9BD "
     u"屢\uF94B 履\uF9DF 崙\uF9D5 嵐\uF921 嶺\uF9AB 年\uF98E 度\uFA01 廉\uF9A2 廊\uF928 廓\uFA0B "
     u"廬\uF982 弄\uF943 律\uF9D8 復\uF966 念\uF9A3 怒\uF960 怜\uF9AC 惡\uF9B9 慄\uF9D9 憐\uF98F "
     u"懶\uF90D 戀\uF990 戮\uF9D2 拉\uF925 拏\uF95B 拓\uFA02 拾\uF973 捻\uF9A4 掠\uF975 撚\uF991 "
     u"擄\uF930 數\uF969 料\uF9BE 旅\uF983 易\uF9E0 暈\uF9C5 暴\uFA06 曆\uF98B 更\uF901 朗\uF929 "
     u"李\uF9E1 杻\uF9C8 林\uF9F4 柳\uF9C9 栗\uF9DA 梁\uF97A 梨\uF9E2 樂\uF914\uF95C\uF9BF 樓\uF94C "
     u"櫓\uF931 欄\uF91D 歷\uF98C 殮\uF9A5 殺\uF970 沈\uF972 泌\uF968 泥\uF9E3 洛\uF915 洞\uFA05 "
     u"流\uF9CA 浪\uF92A 淋\uF9F5 淚\uF94D 淪\uF9D6 溜\uF9CB 溺\uF9EC 滑\uF904 漏\uF94E 漣\uF992 "
     u"濫\uF922 濾\uF984 炙\uF9FB 烈\uF99F 烙\uF916 煉\uF993 燎\uF9C0 燐\uF9EE 爐\uF932 爛\uF91E "
     u"牢\uF946 狀\uF9FA 狼\uF92B 獵\uF9A7 率\uF961\uF9DB 玲\uF9AD 珞\uF917 理\uF9E4 琉\uF9CC "
     u"瑩\uF9AE 璉\uF994 璘\uF9EF 留\uF9CD 略\uF976 異\uF962 痢\uF9E5 療\uF9C1 癩\uF90E 盧\uF933 "
     u"省\uF96D 硫\uF9CE 碌\uF93B 磊\uF947 磻\uF964 礪\uF985 祿\uF93C 禮\uF9B6 稜\uF956 立\uF9F7 "
     u"笠\uF9F8 簾\uF9A6 籠\uF944 粒\uF9F9 糖\uFA03 糧\uF97B 紐\uF9CF 索\uF96A 累\uF94F 綠\uF93D "
     u"綾\uF957 練\uF996 縷\uF950 罹\uF9E6 羅\uF90F 羚\uF9AF 老\uF934 聆\uF9B0 聯\uF997 聾\uF945 "
     u"肋\uF953 臘\uF926 臨\uF9F6 良\uF97C 若\uF974 茶\uF9FE 菉\uF93E 菱\uF958 落\uF918 葉\uF96E "
     u"蓮\uF999 蓼\uF9C2 藍\uF923 藺\uF9F0 蘆\uF935 蘭\uF91F 蘿\uF910 虜\uF936 螺\uF911 蠟\uF927 "
     u"行\uFA08 裂\uF9A0 裡\uF9E8 裸\uF912 襤\uF924 見\uFA0A 說\uF96F\uF9A1 諒\uF97D 論\uF941 "
     u"諾\uF95D 識\uF9FC 讀\uF95A 豈\uF900 豬\uFA16 賂\uF948 賈\uF903 路\uF937 車\uF902 輦\uF998 "
     u"輪\uF9D7 輻\uFA07 轢\uF98D 辰\uF971 連\uF99A 遼\uF9C3 邏\uF913 酪\uF919 醴\uF9B7 里\uF9E9 "
     u"量\uF97E 金\uF90A 鈴\uF9B1 錄\uF93F 鍊\uF99B 閭\uF986 阮\uF9C6 陋\uF951 降\uFA09 陵\uF959 "
     u"陸\uF9D3 隆\uF9DC 隸\uF9B8 離\uF9EA 零\uF9B2 雷\uF949 露\uF938 靈\uF9B3 領\uF9B4 類\uF9D0 "
     u"駱\uF91A 驪\uF987 魯\uF939 鱗\uF9F2 鷺\uF93A 鸞\uF920 鹿\uF940 麗\uF988 麟\uF9F3 黎\uF989 "
     u"龍\uF9C4 龜\uF907\uF908 ￣‾"},
    {page_949,
     u"\\₩ đĐ ⓒ© ㄱ\u1100 ㄲ\u1101 ㄴ\u1102 ㄷ\u1103 ㄸ\u1104 ㄹ\u1105 ㅁ\u1106 ㅂ\u1107 ㅃ\u1108 "
     u"ㅄ\u1121 ㅅ\u113C\u113E ㅆ\u113D\u113F ㅇ\u114C\u11F0 ㅈ\u114E\u1150 ㅉ\u114F\u1151 "
     u"ㅊ\u1154\u1155 ㅡￚ ㅢￛ ㅣￜ \u3164\u115F\uFFA0 ㅥ\u1114 ㅦ\u1115\u11C6 ㅧ\u11C7 ㅨ\u11C8 "
     u"ㅩ\u11CC ㅪ\u11CE ㅫ\u11D3 ㅬ\u11D7 ㅭ\u111A\u11D9 ㅮ\u111C\u11DC ㅯ\u11DD ㅰ\u11DF ㅱ\u111D "
     u"ㅲ\u111E ㅳ\u1120 ㅴ\u1122 ㅵ\u1123 ㅶ\u1127 ㅷ\u1129 ㅸ\u11E6 ㅺ\u11E7 ㅼ\u11E8 "
     u"ㅽ\u1132\u11EA ㅾ\u1136 ㅿ\u1140\u11EB ㆀ\u1147\u11EE ㆂ\u1145\u11F1 ㆃ\u1146\u11F2 "
     u"ㆄ\u1157\u11F4 ㆅ\u1158 ㆆ\u1159\u11F9 ㆇ\u1184 ㆈ\u1185 ㆉ\u1188 ㆊ\u1191 ㆋ\u1192 ㆌ\u1194 "
     u"ㆍ\u119E ㆎ\u11A1 兀\uFA0C 正㊣"},
    {page_949 | page_950,
     u"一㈠ 七㈦ 三㈢ 上㊤ 下㊦ 中㊥ 九㈨ 二㈡ 五㈤ 優㊝ 八㈧ 六㈥ 勞㈸㊘ 十㈩ 協㈿㊯ 印㊞ 右㊨ "
     u"四㈣ 學㈻㊫ 寫㊢ 左㊧ 株㈱ 監㈼㊬ 財㈶㊖ 資㈾㊮ 適㊜ 醫㊩ 項㊠"},
    {page_950, u"˙․ ‘｀ ’´＇ ”＂ ‥¨ ‧• ∥‖ ≡≣ ⊕♁ ⊙☉ ─― 〃″ 〔［ 〕］ ︴⌇ ︿＾ ﹋〰 ﹐¸ ﹑､ ﹨∖ ～〜"},
};

void add_groups(std::vector<BestFit>& fits, std::u16string_view text) {
    while (!text.empty()) {
        const std::size_t end = text.find(u' ', 1);
        for (const char16_t character : text.substr(1, end == text.npos ? end : end - 1))
            fits.push_back({character, text[0]});
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
    }
}

} // namespace

std::vector<BestFit> best_fits(std::uint32_t code_page) {
    const unsigned page = page_bit(code_page);
    std::vector<BestFit> fits;
    for (const Run& run : runs)
        for (unsigned place = 0; (run.pages & page) != 0 && run.first + place <= run.last; ++place)
            fits.push_back(
                {static_cast<char16_t>(run.first + place), static_cast<char16_t>(run.written + place)});
    for (const Groups& one : groups)
        if ((one.pages & page) != 0)
            add_groups(fits, one.text);
    return fits;
}

} // namespace platform
