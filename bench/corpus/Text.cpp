#include "Text.hpp"

#include <array>
#include <cctype>
#include <span>

namespace refdoc::bench {
namespace {

using Words = std::span<const std::string_view>;

// One concept per row, in the three languages, so that the generated texts of a language have
// that language's word lengths and byte mix.
struct Term {
    std::string_view en;
    std::string_view ja;
    std::string_view ko;
};

constexpr Term kNouns[] = {
    {"signal", "信号", "신호"},
    {"matrix", "行列", "행렬"},
    {"vector", "ベクトル", "벡터"},
    {"filter", "フィルター", "필터"},
    {"coefficient", "係数", "계수"},
    {"model", "モデル", "모델"},
    {"array", "配列", "배열"},
    {"table", "テーブル", "테이블"},
    {"data", "データ", "데이터"},
    {"value", "値", "값"},
    {"input", "入力", "입력"},
    {"output", "出力", "출력"},
    {"window", "ウィンドウ", "윈도우"},
    {"sample", "サンプル", "샘플"},
    {"frequency", "周波数", "주파수"},
    {"response", "応答", "응답"},
    {"image", "イメージ", "영상"},
    {"pixel", "ピクセル", "픽셀"},
    {"channel", "チャネル", "채널"},
    {"object", "オブジェクト", "객체"},
    {"property", "プロパティ", "속성"},
    {"handle", "ハンドル", "핸들"},
    {"file", "ファイル", "파일"},
    {"path", "パス", "경로"},
    {"option", "オプション", "옵션"},
    {"parameter", "パラメーター", "파라미터"},
    {"tolerance", "許容誤差", "허용오차"},
    {"solver", "ソルバー", "솔버"},
    {"constraint", "制約", "제약 조건"},
    {"variable", "変数", "변수"},
    {"function", "関数", "함수"},
    {"element", "要素", "요소"},
    {"index", "インデックス", "인덱스"},
    {"dimension", "次元", "차원"},
    {"size", "サイズ", "크기"},
    {"format", "形式", "형식"},
    {"string", "文字列", "문자열"},
    {"timestamp", "タイムスタンプ", "타임스탬프"},
    {"interval", "区間", "구간"},
    {"sequence", "系列", "시퀀스"},
    {"transform", "変換", "변환"},
    {"spectrum", "スペクトル", "스펙트럼"},
    {"gain", "ゲイン", "이득"},
    {"phase", "位相", "위상"},
    {"system", "システム", "시스템"},
    {"state", "状態", "상태"},
    {"block", "ブロック", "블록"},
    {"port", "ポート", "포트"},
    {"bus", "バス", "버스"},
    {"mask", "マスク", "마스크"},
    {"event", "イベント", "이벤트"},
    {"callback", "コールバック", "콜백"},
    {"plot", "プロット", "플롯"},
    {"axis", "軸", "축"},
    {"label", "ラベル", "레이블"},
    {"legend", "凡例", "범례"},
    {"color", "色", "색"},
    {"line", "線", "선"},
    {"marker", "マーカー", "마커"},
    {"surface", "曲面", "곡면"},
    {"mesh", "メッシュ", "메시"},
    {"point cloud", "点群", "점군"},
    {"graph", "グラフ", "그래프"},
    {"node", "ノード", "노드"},
    {"network", "ネットワーク", "네트워크"},
    {"layer", "層", "계층"},
    {"weight", "重み", "가중치"},
    {"gradient", "勾配", "기울기"},
    {"loss", "損失", "손실"},
    {"estimate", "推定値", "추정값"},
};

constexpr Term kVerbs[] = {
    {"Compute", "計算", "계산"},
    {"Create", "作成", "생성"},
    {"Return", "取得", "반환"},
    {"Estimate", "推定", "추정"},
    {"Apply", "適用", "적용"},
    {"Convert", "変換", "변환"},
    {"Display", "表示", "표시"},
    {"Read", "読み取り", "읽기"},
    {"Write", "書き込み", "쓰기"},
    {"Find", "検索", "찾기"},
    {"Remove", "削除", "제거"},
    {"Add", "追加", "추가"},
    {"Set", "設定", "설정"},
    {"Update", "更新", "업데이트"},
    {"Validate", "検証", "검증"},
    {"Generate", "生成", "생성"},
    {"Resample", "再サンプリング", "리샘플링"},
    {"Fit", "近似", "피팅"},
    {"Solve", "求解", "풀기"},
    {"Simulate", "シミュレーション", "시뮬레이션"},
};

constexpr Term kAdjectives[] = {
    {"linear", "線形", "선형"},
    {"nonlinear", "非線形", "비선형"},
    {"discrete", "離散", "이산"},
    {"continuous", "連続", "연속"},
    {"default", "既定の", "디폴트"},
    {"specified", "指定された", "지정된"},
    {"optional", "オプションの", "선택적"},
    {"numeric", "数値", "숫자형"},
    {"logical", "論理", "논리형"},
    {"complex", "複素数", "복소수"},
    {"sparse", "スパース", "희소"},
    {"multichannel", "マルチチャネル", "다중 채널"},
};

constexpr std::string_view kPrepositions[] = {"of", "for", "from", "in", "to", "with"};
constexpr std::string_view kSymbols[] = {"±", "×", "≤", "≥", "°", "–", "µs", "²"};

// Method names are few and shared by many classes, as on real class pages.
constexpr std::string_view kMethods[] = {
    "reset", "delete", "disp",  "step",   "release", "clone",    "isLocked", "info",        "save",     "load",
    "open",  "close",  "start", "stop",   "update",  "validate", "addPoint", "removePoint", "getValue", "setValue",
    "plot",  "show",   "hide",  "export", "import",  "resize",   "merge",    "split",
};

constexpr std::string_view kShortArguments[] = {"x", "y", "A", "B", "n", "t", "fs", "dim", "tol", "k"};

std::string_view termIn(const Term& term, Language language) noexcept {
    switch (language) {
    case Language::Japanese:
        return term.ja;
    case Language::Korean:
        return term.ko;
    case Language::English:
        break;
    }
    return term.en;
}

template <class T, std::size_t N>
const T& pickFrom(Random& random, const T (&table)[N]) {
    return table[random.below(N)];
}

std::string capitalized(std::string_view word) {
    std::string out(word);
    if (!out.empty()) {
        out[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(out[0])));
    }
    return out;
}

std::string lowered(std::string_view word) {
    std::string out(word);
    for (auto& c : out) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return out;
}

// The noun without spaces, for identifiers: "point cloud" -> "pointcloud".
std::string identifierPart(std::string_view noun) {
    std::string out;
    for (const char c : noun) {
        if (c != ' ') {
            out.push_back(c);
        }
    }
    return out;
}

std::string englishPhrase(Random& random) {
    std::string out(pickFrom(random, kVerbs).en);
    out += ' ';
    if (random.chance(0.5)) {
        out += pickFrom(random, kAdjectives).en;
        out += ' ';
    }
    out += pickFrom(random, kNouns).en;
    if (random.chance(0.7)) {
        out += ' ';
        out += pickFrom(random, kPrepositions);
        out += ' ';
        if (random.chance(0.4)) {
            out += pickFrom(random, kAdjectives).en;
            out += ' ';
        }
        out += pickFrom(random, kNouns).en;
    }
    return out;
}

// "<adjective><noun>の<noun>を<verb>" and its Korean counterpart.
std::string cjkPhrase(Random& random, Language language) {
    const bool korean = language == Language::Korean;
    std::string out;
    if (random.chance(0.5)) {
        out += termIn(pickFrom(random, kAdjectives), language);
        if (korean) {
            out += ' ';
        }
    }
    out += termIn(pickFrom(random, kNouns), language);
    if (random.chance(0.7)) {
        out += korean ? "의 " : "の";
        out += termIn(pickFrom(random, kNouns), language);
    }
    out += korean ? "을 " : "を";
    out += termIn(pickFrom(random, kVerbs), language);
    return out;
}

std::string sentence(Random& random, Language language, std::string_view codeName) {
    std::string out;
    switch (language) {
    case Language::English:
        out = englishPhrase(random);
        if (random.chance(0.5)) {
            out += " using <code>";
            out += codeName;
            out += "</code>";
        }
        if (random.chance(0.08)) { // the odd unit or operator sign
            out += " (";
            out += pickFrom(random, kSymbols);
            out += ' ';
            out += std::to_string(random.between(1, 500));
            out += ')';
        }
        out += random.chance(0.2) ? ", and return the " + std::string(pickFrom(random, kNouns).en) + "." : ".";
        break;
    case Language::Japanese:
        if (random.chance(0.5)) {
            out += "<code>";
            out += codeName;
            out += "</code> は";
        }
        out += cjkPhrase(random, language);
        out += "します。";
        break;
    case Language::Korean:
        if (random.chance(0.5)) {
            out += "<code>";
            out += codeName;
            out += "</code>은(는) ";
        }
        out += cjkPhrase(random, language);
        out += "합니다. ";
        break;
    }
    return out;
}

} // namespace

std::string_view languageCode(Language language) noexcept {
    switch (language) {
    case Language::Japanese:
        return "ja";
    case Language::Korean:
        return "ko";
    case Language::English:
        break;
    }
    return "en";
}

const Headings& headings(Language language) noexcept {
    static constexpr Headings kEnglish{"Syntax",           "Creation",   "Input Arguments",      "Name-Value Arguments",
                                       "Output Arguments", "Properties", "Read-Only Properties", "Input Port"};
    static constexpr Headings kJapanese{
        "構文", "作成", "入力引数", "名前と値の引数", "出力引数", "プロパティ", "読み取り専用プロパティ", "入力端子"};
    static constexpr Headings kKorean{"구문",      "생성", "입력 인수",      "이름-값 인수",
                                      "출력 인수", "속성", "읽기 전용 속성", "입력 포트"};
    switch (language) {
    case Language::Japanese:
        return kJapanese;
    case Language::Korean:
        return kKorean;
    case Language::English:
        break;
    }
    return kEnglish;
}

std::string TextSource::purpose(Random& random) const {
    if (language_ == Language::English) {
        return englishPhrase(random);
    }
    return cjkPhrase(random, language_);
}

std::string TextSource::argumentPurpose(Random& random, std::string_view argumentName) const {
    const auto& noun = pickFrom(random, kNouns);
    const auto& adjective = pickFrom(random, kAdjectives);
    switch (language_) {
    case Language::Japanese:
        return std::string(termIn(noun, language_)) + "。" + std::string(termIn(adjective, language_)) +
               (termIn(adjective, language_).ends_with("の") ? "" : "の") +
               std::string(termIn(pickFrom(random, kNouns), language_)) + "として指定します。<code>" +
               std::string(argumentName) + "</code> の既定値は空です。";
    case Language::Korean:
        return std::string(termIn(noun, language_)) + ". " + std::string(termIn(adjective, language_)) + " " +
               std::string(termIn(pickFrom(random, kNouns), language_)) + "(으)로 지정됩니다. <code>" +
               std::string(argumentName) + "</code>의 디폴트 값은 비어 있습니다.";
    case Language::English:
        break;
    }
    return capitalized(noun.en) + ", specified as a " + std::string(adjective.en) + " " +
           std::string(pickFrom(random, kNouns).en) + ". If you do not specify <code>" + std::string(argumentName) +
           "</code>, the function uses the " + std::string(pickFrom(random, kAdjectives).en) + " value.";
}

std::string TextSource::description(Random& random, std::string_view codeName, std::size_t targetChars) const {
    std::string out;
    // CJK characters take three bytes but say more each: aim at a similar amount of content.
    const std::size_t targetBytes = language_ == Language::English ? targetChars : targetChars * 3 / 2;
    while (out.size() < targetBytes) {
        out += "<p>";
        const int sentences = random.between(1, 4);
        for (int i = 0; i < sentences; ++i) {
            if (i > 0 && language_ == Language::English) {
                out += ' ';
            }
            out += sentence(random, language_, codeName);
        }
        out += "</p>";
        if (random.chance(0.15)) { // a code sample, with quotes and a line break to escape
            out += "<pre>result = ";
            out += codeName;
            out += "(data, \"Method\", \"fast\");\nplot(result)</pre>";
        }
    }
    return out;
}

std::string TextSource::title(Random& random) const {
    if (language_ == Language::English) {
        std::string out = capitalized(pickFrom(random, kVerbs).en);
        out += ' ';
        out += capitalized(pickFrom(random, kNouns).en);
        out += random.chance(0.5) ? " of " : " Using ";
        out += capitalized(pickFrom(random, kAdjectives).en);
        out += ' ';
        out += capitalized(pickFrom(random, kNouns).en);
        return out;
    }
    return cjkPhrase(random, language_);
}

std::string TextSource::label(Random& random) const {
    const auto& first = pickFrom(random, kNouns);
    const auto& second = pickFrom(random, kNouns);
    switch (language_) {
    case Language::Japanese:
        return std::string(first.ja) + "の" + std::string(second.ja);
    case Language::Korean:
        return std::string(first.ko) + " " + std::string(second.ko);
    case Language::English:
        break;
    }
    return capitalized(first.en) + " " + std::string(second.en);
}

std::string functionName(Random& random) {
    if (random.chance(0.4)) { // terse lower-case names
        std::string out = lowered(pickFrom(random, kVerbs).en).substr(0, 4);
        out += identifierPart(pickFrom(random, kNouns).en).substr(0, 5);
        return out;
    }
    std::string out = lowered(pickFrom(random, kVerbs).en);
    out += capitalized(identifierPart(pickFrom(random, kNouns).en));
    if (random.chance(0.3)) {
        out += capitalized(identifierPart(pickFrom(random, kNouns).en));
    }
    return out;
}

std::string className(Random& random) {
    std::string out = capitalized(identifierPart(pickFrom(random, kNouns).en));
    out += capitalized(identifierPart(pickFrom(random, kNouns).en));
    out += random.chance(0.5) ? "Estimator" : "Object";
    return out;
}

std::string methodName(Random& random) { return std::string(pickFrom(random, kMethods)); }

std::string propertyName(Random& random) {
    std::string out = capitalized(identifierPart(pickFrom(random, kNouns).en));
    if (random.chance(0.6)) {
        out += capitalized(identifierPart(pickFrom(random, kNouns).en));
    }
    return out;
}

std::string argumentName(Random& random) {
    if (random.chance(0.5)) {
        return std::string(pickFrom(random, kShortArguments));
    }
    return identifierPart(pickFrom(random, kNouns).en) + capitalized(identifierPart(pickFrom(random, kNouns).en));
}

std::string blockName(Random& random) {
    return capitalized(pickFrom(random, kAdjectives).en) + " " + capitalized(pickFrom(random, kNouns).en) + " " +
           capitalized(pickFrom(random, kNouns).en);
}

std::string capitalizedWord(Random& random) { return capitalized(identifierPart(pickFrom(random, kNouns).en)); }

} // namespace refdoc::bench
