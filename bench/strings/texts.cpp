#include "texts.h"

#include <string_view>
#include <vector>

namespace bench {
namespace {

// Words divided by spaces. The English words and the spaces between them leave free what the search
// rows look for: every byte that is no lower-case letter, the pair "nh" and the words of the rows.
constexpr std::u16string_view kEnglish =
    u"the of and to in is that for it as was with be by on not he his but at are this have from or "
    u"had an they which one you were all her she there would their we him been has when who will "
    u"more no if out so said what up its about into than them can only other new some could time "
    u"these two may then do first any my now such like our over man me even most made after also "
    u"did many before must through back years where much your way well down should because each "
    u"just those people how too little state good very make world still own see men work long get "
    u"here between both life being under never day same another know while last might us great old "
    u"year off come since against go came right used take three states himself few house use "
    u"during "
    u"without again place american around however home small found thought went say part once "
    u"general high upon school every does got united left number course war until always away "
    u"something fact though water less public put thing almost hand enough far took head yet "
    u"government system better set told nothing night end why called eyes find going look asked "
    u"later point knew city next program business give group toward days young let room present "
    u"several order national given possible large face among though second children rather quite "
    u"justify exact quick zone jury question";
constexpr std::u16string_view kFrench =
    u"le de un être et à il avoir ne je son que se qui ce dans en du elle au pour pas vous par sur "
    u"faire plus dire me on mon lui nous comme mais pouvoir avec tout y aller voir bien où sans tu "
    u"ou leur homme si deux mari moi vouloir te femme venir quand grand celui notre même déjà très "
    u"après été année côté hôtel première père mère frère théâtre élève école étrange façon garçon "
    u"français leçon reçu forêt fenêtre tête arrêt août goûter sûr naïf Noël maïs cœur sœur œuvre "
    u"Été École À Ça Être État Île";
constexpr std::u16string_view kRussian =
    u"и в не на я быть он с что а по это она этот к но они мы весь который из у который то за свой "
    u"что весь год от так о для ты же все тот мочь вы человек такой его сказать только или ещё бы "
    u"себя один как уже до время если сам когда другой вот говорить наш мой знать стать при чтобы "
    u"дело жизнь кто первый очень два день её новый рука даже во со раз где там под можно ну какой "
    u"после их работа без самый потом надо хотеть ли слово идти большой должен место иметь ничто "
    u"Москва Россия Европа Вчера Сегодня";
constexpr std::u16string_view kChinese =
    u"人人生而自由,在尊严和权利上一律平等。 他们赋有理性和良心,并应以兄弟关系的精神相对待。 "
    u"人人有资格享受本宣言所载的一切权利和自由,不分种族、肤色、性别、语言、宗教、政治或其他见解、"
    u"国籍或社会出身、财产、出生或其他身分等任何区别。 人人有权享有生命、自由和人身安全。 "
    u"任何人不得使为奴隶或奴役;一切形式的奴隶制度和奴隶买卖,均应予以禁止。";
constexpr std::u16string_view kEmoji =
    u"😀 😁😂🤣 😃😄😅😆 😉😊😋😎😍😘🥰 😗😙😚 "
    u"🙂🤗🤩🤔🤨😐 "
    u"😑😶🙄😏 "
    u"😣😥😮🤐 "
    u"😯😪😫😴 "
    u"😌😛😜😝 "
    u"🤤😒😓😔😕🙃🤑 "
    u"🐶🐱🐭🐹 🐰🦊🐻🐼🐨 🍏🍎🍐🍊🍋 🚗🚕🚙🚌";

std::u16string_view wordText(Language language) {
    switch (language) {
        case Language::English:
            return kEnglish;
        case Language::French:
            return kFrench;
        case Language::Russian:
            return kRussian;
        case Language::Chinese:
            return kChinese;
        case Language::Emoji:
            return kEmoji;
    }
    return {};
}

std::vector<std::u16string_view> wordsOf(Language language) {
    std::vector<std::u16string_view> words;
    std::u16string_view rest = wordText(language);
    while (!rest.empty()) {
        const std::size_t space = std::min(rest.find(u' '), rest.size());
        words.push_back(rest.substr(0, space));
        rest.remove_prefix(std::min(space + 1, rest.size()));
    }
    return words;
}

bool isHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

// The elements of the character that starts at `word[at]`, which is moved past it.
void encode(std::u16string_view word, std::size_t& at, std::vector<Zel16u>& out) {
    out.assign(1, word[at]);
    if (isHighSurrogate(word[at++])) out.push_back(word[at++]);
}

void encode(std::u16string_view word, std::size_t& at, std::vector<Zel8u>& out) {
    std::uint32_t code = word[at++];
    if (isHighSurrogate(static_cast<char16_t>(code)))
        code = 0x10000 + ((code & 0x3FF) << 10 | (word[at++] & 0x3FFu));
    const int extra = code < 0x80 ? 0 : code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    constexpr std::uint32_t kLead[] = {0, 0xC0, 0xE0, 0xF0};
    out.assign(1, static_cast<Zel8u>(kLead[extra] | code >> (6 * extra)));
    for (int k = extra - 1; k >= 0; --k)
        out.push_back(static_cast<Zel8u>(0x80 | (code >> (6 * k) & 0x3F)));
}

template <class T>
void write(T* dst, int len, Language language, Random& random) {
    const std::vector<std::u16string_view> words = wordsOf(language);
    std::vector<T> character;
    int end = 0;
    while (end < len) {
        const std::u16string_view word =
            words[static_cast<std::size_t>(random.below(static_cast<int>(words.size())))];
        for (std::size_t at = 0; at < word.size();) {
            encode(word, at, character);
            if (end + static_cast<int>(character.size()) > len) break;
            for (const T element : character) dst[end++] = element;
        }
        if (end < len) dst[end++] = ' ';
    }
}

}  // namespace

const char* languageName(Language language) {
    switch (language) {
        case Language::English:
            return "ASCII";
        case Language::French:
            return "Latin";
        case Language::Russian:
            return "Cyrillic";
        case Language::Chinese:
            return "CJK";
        case Language::Emoji:
            return "emoji";
    }
    return "";
}

void writeText(Zel8u* dst, int len, Language language, Random& random) {
    write(dst, len, language, random);
}

void writeText(Zel16u* dst, int len, Language language, Random& random) {
    write(dst, len, language, random);
}

}  // namespace bench
