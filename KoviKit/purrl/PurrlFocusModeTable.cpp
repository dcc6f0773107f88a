#include <initializer_list>
#include <span>

#include "KoviKit/foundation/Trap.h"
#include "KoviKit/purrl/PurrlFocusMode.h"

namespace kovi {
namespace {

using List = std::vector<std::string>;
using Names = std::span<const std::string_view>;
using Suggestions = std::vector<PurrlFocusSuggestion>;

// Joins named lists in order. Duplicates stay: each list keeps its own
// meaning even where two of them name the same application.
List joined(std::initializer_list<Names> parts) {
  List all;
  for (const Names part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

List listOf(Names names) { return List(names.begin(), names.end()); }

// Web domains of outside services.
constexpr std::string_view socialDomains[]{
    "facebook.com", "instagram.com", "x.com",         "twitter.com",  "tiktok.com",
    "snapchat.com", "reddit.com",    "pinterest.com", "linkedin.com", "tumblr.com",
};
constexpr std::string_view streamingDomains[]{"netflix.com", "disneyplus.com", "primevideo.com", "hulu.com", "twitch.tv"};
constexpr std::string_view gameDomains[]{"steampowered.com", "epicgames.com", "roblox.com", "battle.net", "poki.com", "crazygames.com"};
constexpr std::string_view messagingDomains[]{"web.whatsapp.com", "web.telegram.org", "discord.com"};
constexpr std::string_view videoDomains[]{"youtube.com", "m.youtube.com"};

// Mac applications.
constexpr std::string_view macStudyBrowsers[]{
    "com.apple.Safari",           "com.google.Chrome",     "org.mozilla.firefox",     "company.thebrowser.Browser",
    "com.microsoft.edgemac",      "com.brave.Browser",     "com.operasoftware.Opera",
};
constexpr std::string_view macStudyTools[]{
    "com.openai.chat",          "com.apple.Notes",          "com.apple.Dictionary",
    "com.apple.calculator",     "com.apple.Preview",        "com.apple.iBooksX",
    "com.apple.iWork.Pages",    "com.apple.iWork.Keynote",  "com.apple.iWork.Numbers",
    "com.microsoft.Word",       "com.microsoft.Excel",      "com.microsoft.Powerpoint",
    "notion.id",                "md.obsidian",              "com.apple.TextEdit",
    "com.apple.freeform",       "com.apple.reminders",      "com.apple.iCal",
    "com.apple.Music",          "com.spotify.client",       "com.apple.Terminal",
    "com.microsoft.VSCode",     "com.apple.dt.Xcode",       "com.goodnotesapp.x",
    "com.anthropic.claudefordesktop", "com.apple.Passwords", "com.1password.1password",
    "com.bitwarden.desktop",    "com.apple.ActivityMonitor", "com.apple.systempreferences",
};
constexpr std::string_view macDistractions[]{
    "com.hnc.Discord",         "net.whatsapp.WhatsApp",           "ru.keepcoder.Telegram",
    "org.telegram.desktop",    "com.valvesoftware.steam",         "com.epicgames.EpicGamesLauncher",
    "com.blizzard.bnetlauncher", "com.riotgames.RiotGames.RiotClient", "com.netflix.Netflix",
};
constexpr std::string_view macReadingTools[]{
    "com.apple.iBooksX", "com.amazon.Lassen",  "com.apple.Preview",  "com.apple.Notes",
    "com.apple.Dictionary", "com.apple.Music", "com.spotify.client",
};
constexpr std::string_view macExamEssentials[]{"com.apple.Passwords", "com.apple.ActivityMonitor", "com.apple.systempreferences"};

// Browsers then study tools, built once and shared by the study and study-date rows.
const List& macStudyList() {
  static const List list = joined({macStudyBrowsers, macStudyTools});
  return list;
}

// Phone applications hidden in a mode (iOS bundle identifiers).
constexpr std::string_view phoneSocialApps[]{
    "com.burbn.instagram", "com.zhiliaoapp.musically", "com.atebits.Tweetie2", "com.toyopagroup.picaboo",
    "com.facebook.Facebook", "com.reddit.Reddit",
};
constexpr std::string_view phoneVideoApps[]{"com.google.ios.youtube", "com.netflix.Netflix", "tv.twitch"};
constexpr std::string_view phoneMessagingApps[]{"net.whatsapp.WhatsApp", "ph.telegra.Telegraph", "com.hammerandchisel.discord"};
constexpr std::string_view phoneGameApps[]{"com.roblox.robloxmobile", "com.supercell.magic", "com.king.candycrushsaga"};

PurrlFocusSuggestion branded(std::string id, std::string name, std::string symbol) {
  return {std::move(id), std::move(name), std::move(symbol)};
}
PurrlFocusSuggestion builtIn(std::string id, std::string symbol) { return {std::move(id), std::nullopt, std::move(symbol)}; }

// Applications proposed for a phone list: what to keep usable in allow-list
// modes, what to keep away in block-list modes.
Suggestions studySuggestions() {
  return {
      builtIn("notes", "note.text"),
      builtIn("calculator", "plus.forwardslash.minus"),
      builtIn("books", "books.vertical"),
      branded("goodnotes", "Goodnotes", "pencil.and.scribble"),
      branded("notion", "Notion", "doc.text"),
      branded("quizlet", "Quizlet", "rectangle.stack"),
  };
}
Suggestions readingSuggestions() {
  return {
      builtIn("books", "books.vertical"),
      branded("kindle", "Kindle", "book"),
      builtIn("notes", "note.text"),
      branded("spotify", "Spotify", "music.note"),
  };
}
Suggestions hangoutSuggestions() {
  return {
      builtIn("camera", "camera"),
      builtIn("photos", "photo.on.rectangle"),
      builtIn("maps", "map"),
      builtIn("messages", "message"),
      branded("spotify", "Spotify", "music.note"),
  };
}
Suggestions mockSuggestions() {
  return {
      builtIn("clock", "timer"),
      builtIn("calculator", "plus.forwardslash.minus"),
  };
}
Suggestions studyDateSuggestions() {
  return {
      builtIn("notes", "note.text"),
      builtIn("facetime", "video"),
      builtIn("calculator", "plus.forwardslash.minus"),
      branded("goodnotes", "Goodnotes", "pencil.and.scribble"),
  };
}
Suggestions distractionSuggestions() {
  return {
      branded("instagram", "Instagram", "camera"),
      branded("tiktok", "TikTok", "music.note.list"),
      branded("youtube", "YouTube", "play.rectangle"),
      branded("x", "X", "bubble.left"),
      branded("snapchat", "Snapchat", "camera.viewfinder"),
      branded("netflix", "Netflix", "tv"),
  };
}
Suggestions sleepSuggestions() {
  return {
      branded("instagram", "Instagram", "camera"),
      branded("tiktok", "TikTok", "music.note.list"),
      branded("youtube", "YouTube", "play.rectangle"),
      branded("netflix", "Netflix", "tv"),
      branded("whatsapp", "WhatsApp", "phone.bubble"),
  };
}

std::vector<PurrlFocusModeSpec> buildTable() {
  using enum PurrlFocusModeID;
  using enum PurrlFocusStrictness;
  using enum PurrlFocusAppPolicy;
  const List everyPhoneDistraction = joined({phoneSocialApps, phoneVideoApps, phoneMessagingApps, phoneGameApps});
  const List phoneSocialAndVideo = joined({phoneSocialApps, phoneVideoApps});
  const List phoneSocialVideoGames = joined({phoneSocialApps, phoneVideoApps, phoneGameApps});
  const List studyDateMacList = [] {
    List list = macStudyList();
    list.push_back("com.apple.FaceTime");
    return list;
  }();
  // Columns: id, minuteOptions, defaultMinutes, defaultStrictness, phoneApps,
  // phoneSuggestions, lecturePass, hideBundleIDs, blockedDomains, macApps, macBundleIDs.
  return {
      {study, {25, 50, 90}, 50, committed, allowList, studySuggestions(), true, everyPhoneDistraction,
       joined({socialDomains, streamingDomains, gameDomains, messagingDomains}), allowList, macStudyList()},
      {deep, {60, 90, 120}, 90, committed, blockList, distractionSuggestions(), false, everyPhoneDistraction,
       joined({socialDomains, streamingDomains, gameDomains, messagingDomains, videoDomains}), blockList,
       listOf(macDistractions)},
      {quick, {10, 15, 25}, 25, chill, blockList, distractionSuggestions(), false, phoneSocialAndVideo,
       joined({socialDomains, videoDomains}), blockList, listOf(macDistractions)},
      {reading, {20, 30, 45, 60}, 30, chill, allowList, readingSuggestions(), false, everyPhoneDistraction,
       joined({socialDomains, streamingDomains, gameDomains, messagingDomains, videoDomains}), allowList,
       listOf(macReadingTools)},
      {hangout, {60, 120, 240}, 240, chill, allowList, hangoutSuggestions(), false, phoneSocialVideoGames,
       joined({socialDomains, streamingDomains, gameDomains}), blockList, listOf(macDistractions)},
      {couple, {60, 120, 240}, 240, chill, blockList, distractionSuggestions(), false, phoneSocialVideoGames,
       joined({socialDomains, streamingDomains, gameDomains, videoDomains}), blockList, listOf(macDistractions)},
      {sleep, {360, 420, 480, 540}, 480, committed, blockList, sleepSuggestions(), false, everyPhoneDistraction,
       joined({socialDomains, streamingDomains, gameDomains, messagingDomains, videoDomains}), blockList,
       listOf(macDistractions)},
      {gym, {45, 60, 90}, 60, chill, blockList, distractionSuggestions(), false, phoneSocialAndVideo,
       joined({socialDomains, streamingDomains, videoDomains}), blockList, listOf(macDistractions)},
      {mock, {90, 135, 165, 180}, 165, locked, allowList, mockSuggestions(), false, everyPhoneDistraction,
       joined({socialDomains, streamingDomains, gameDomains, messagingDomains, videoDomains}), allowList,
       listOf(macExamEssentials)},
      {studyDate, {25, 50, 90}, 50, committed, allowList, studyDateSuggestions(), true, everyPhoneDistraction,
       joined({socialDomains, streamingDomains, gameDomains, messagingDomains}), allowList, studyDateMacList},
  };
}

const std::vector<PurrlFocusModeSpec>& table() {
  static const std::vector<PurrlFocusModeSpec> rows = [] {
    auto built = buildTable();
    // Look-up indexes by id, so the rows must sit in id order.
    for (std::size_t index = 0; index < built.size(); ++index) {
      if (static_cast<std::size_t>(built[index].id) != index) trap("focus-mode table out of id order");
    }
    return built;
  }();
  return rows;
}

}  // namespace

const PurrlFocusModeSpec& purrlFocusModeSpec(PurrlFocusModeID id) {
  const auto index = static_cast<std::size_t>(id);
  const auto& rows = table();
  if (index >= rows.size()) trap("unknown focus-mode id");
  return rows[index];
}

std::span<const PurrlFocusModeSpec> purrlFocusModeTable() { return table(); }

}  // namespace kovi
