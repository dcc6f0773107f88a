#pragma once

// Every line of the consent summary. The Turkish texts are what participants
// consent to; the English and French texts say the same. Each line is also a
// rule of judgement: the result computation must do what the line says.

#include <array>

#include "KoviKit/working/WorkingSummaryText.h"

namespace kovi::workingsummary {

using Text = WorkingSummaryText;

// Consent.
inline constexpr Text consentBinding{
    "Bu kurallar katılımcı onayına bağlıdır. Başlamadan önce değişirse yeniden onay gerekir; başladıktan sonra "
    "değişmez.",
    "These rules depend on every participant’s consent. If they change before the start, consent is needed again; "
    "once the Kovi has started they do not change.",
    "Ces règles dépendent du consentement de chaque participant. Si elles changent avant le début, un nouveau "
    "consentement est nécessaire ; une fois le Kovi commencé, elles ne changent plus."};

// Goal, by goal kind.
inline constexpr Text dailyTarget{"Günlük hedef: {0}.", "Daily target: {0}.", "Objectif quotidien : {0}."};
inline constexpr Text requiredSomeDays{"{0} günün {1} gününde hedefe ulaşmalısın.",
                                       "You must reach the target on {1} of the {0, plural, one {# day} other {# days}}.",
                                       "Tu dois atteindre l’objectif {1, plural, one {# jour} other {# jours}} sur {0}."};
inline constexpr Text requiredAllDays{"{0} günün hepsinde hedefe ulaşmalısın.",
                                      "{0, plural, one {You must reach the target on the # day.} "
                                      "other {You must reach the target on all # days.}}",
                                      "{0, plural, one {Tu dois atteindre l’objectif le # jour.} "
                                      "other {Tu dois atteindre l’objectif chacun des # jours.}}"};
inline constexpr Text bothConditions{
    "İki koşul birlikte gerekli: toplam {0} doğrulanmış çalışma ve günlük koşul.",
    "Both conditions are required together: {0} of verified work in total, and the daily condition.",
    "Les deux conditions sont requises ensemble : {0} de travail vérifié au total, et la condition quotidienne."};
inline constexpr Text dailyCondition{"Günlük koşul: gerekli başarılı günlerin her birinde en az {0}.",
                                     "Daily condition: at least {0} on each of the required successful days.",
                                     "Condition quotidienne : au moins {0} chacun des jours réussis requis."};
inline constexpr Text totalTarget{"Toplam hedef: Kovi boyunca {0} doğrulanmış çalışma.",
                                  "Total target: {0} of verified work over the Kovi.",
                                  "Objectif total : {0} de travail vérifié sur toute la durée du Kovi."};
inline constexpr Text singleSessionTarget{"Tek oturum hedefi: {0}.", "Single-session target: {0}.",
                                          "Objectif en une seule session : {0}."};
inline constexpr Text scheduledTarget{
    "Planlı hedef: aşağıdaki {0} çalışma aralığının her birindeki hedef tamamlanmalı.",
    "Scheduled target: {0, plural, one {the target of the # work window below} "
    "other {the target of each of the # work windows below}} must be completed.",
    "Objectif planifié : {0, plural, one {l’objectif de la # plage de travail ci-dessous} "
    "other {l’objectif de chacune des # plages de travail ci-dessous}} doit être atteint."};
inline constexpr Text sprintTarget{"Sprint: belirlenen aralıkta toplam {0} doğrulanmış çalışma.",
                                   "Sprint: {0} of verified work in total within the set window.",
                                   "Sprint : {0} de travail vérifié au total dans la plage fixée."};
inline constexpr Text sprintBoth{
    "Sprintin toplam hedefi ve aşağıdaki aralık hedefi birlikte sağlanmalı.",
    "The sprint’s total target and the window target below must both be met.",
    "L’objectif total du sprint et l’objectif de la plage ci-dessous doivent être atteints tous les deux."};
inline constexpr Text windowLine{"{0}. aralık: {1} – {2}, hedef {3}.", "Window {0}: {1} – {2}, target {3}.",
                                 "Plage {0} : {1} – {2}, objectif {3}."};

// Progress measure, by goal kind.
inline constexpr Text measureBestDays{
    "İlerleme ölçüsü: gerekli sayıdaki en iyi günün günlük hedefle sınırlanmış toplamı.",
    "Progress measure: the total of the required number of best days, each capped at the daily target.",
    "Mesure de progression : le total du nombre requis de meilleurs jours, chacun plafonné à l’objectif "
    "quotidien."};
inline constexpr Text measureBestDaysAndTotal{
    "İlerleme ölçüsü: gerekli sayıdaki en iyi günün günlük hedefle sınırlanmış toplamı ve sayılan toplam çalışma "
    "süresi.",
    "Progress measure: the total of the required number of best days, each capped at the daily target, and the "
    "counted total work time.",
    "Mesure de progression : le total du nombre requis de meilleurs jours, chacun plafonné à l’objectif "
    "quotidien, et le temps de travail total compté."};
inline constexpr Text measureTotal{"İlerleme ölçüsü: sayılan toplam çalışma süresi.",
                                   "Progress measure: the counted total work time.",
                                   "Mesure de progression : le temps de travail total compté."};
inline constexpr Text measureBestSession{"İlerleme ölçüsü: en iyi tek oturumun sayılan süresi.",
                                         "Progress measure: the counted time of the best single session.",
                                         "Mesure de progression : le temps compté de la meilleure session unique."};
inline constexpr Text measureWindowsBestSession{
    "İlerleme ölçüsü: her aralığın en iyi tek oturum ilerlemesinin hedefle sınırlanmış toplamı; seçilmiş telafi "
    "dahildir.",
    "Progress measure: the total of each window’s best single-session progress, capped at its target; chosen "
    "make-up included.",
    "Mesure de progression : le total de la meilleure progression en une session de chaque plage, plafonnée à son "
    "objectif ; rattrapage choisi inclus."};
inline constexpr Text measureWindowsAccumulated{
    "İlerleme ölçüsü: aralık içinde biriken sürelerin, her aralığın hedefiyle sınırlanmış toplamı.",
    "Progress measure: the time accumulated within each window, capped at that window’s target, summed.",
    "Mesure de progression : le temps accumulé dans chaque plage, plafonné à l’objectif de la plage, additionné."};
inline constexpr Text measureSprint{"İlerleme ölçüsü: aralık içinde sayılan toplam çalışma süresi.",
                                    "Progress measure: the counted total work time within the window.",
                                    "Mesure de progression : le temps de travail total compté dans la plage."};
inline constexpr Text capNoCarry{
    "Her günün veya aralığın katkısı kendi hedefiyle sınırlıdır; fazlası başka güne veya aralığa aktarılmaz.",
    "Each day’s or window’s contribution is capped at its own target; a surplus never carries over to another day "
    "or window.",
    "La contribution de chaque jour ou plage est plafonnée à son propre objectif ; un surplus n’est jamais reporté "
    "sur un autre jour ou une autre plage."};

// Calendar.
inline constexpr Text countingSpan{
    "Çalışma aralığın başında sayılmaya başlar, bitişinde durur. İki güne yayılan süre her güne ayrı yazılır.",
    "Work counts from the start of a window and stops at its end. Time spanning two days is written to each day "
    "separately.",
    "Le travail compte à partir du début d’une plage et s’arrête à sa fin. Le temps à cheval sur deux jours est "
    "inscrit séparément pour chaque jour."};
inline constexpr Text calendarDays{
    "Kovi günleri aşağıdaki sabit takvim aralıklarıdır; yaz saati geçişinde 24 saat olmak zorunda değildir.",
    "Kovi days are the fixed calendar spans below; at a daylight-saving change they need not last 24 hours.",
    "Les jours du Kovi sont les plages de calendrier fixes ci-dessous ; lors d’un changement d’heure, ils ne "
    "durent pas forcément 24 heures."};
inline constexpr Text anchoredDays{"Kovi günleri aşağıdaki sabit aralıklardır; her biri tam 24 saat sürer.",
                                   "Kovi days are the fixed spans below; each lasts exactly 24 hours.",
                                   "Les jours du Kovi sont les plages fixes ci-dessous ; chacun dure exactement 24 "
                                   "heures."};
inline constexpr Text timeZone{"Saat dilimi: {0}. Seyahat veya cihazın saat dilimi bu sınırları değiştirmez.",
                               "Time zone: {0}. Travel or the device’s time zone does not change these limits.",
                               "Fuseau horaire : {0}. Un voyage ou le fuseau de l’appareil ne change pas ces "
                               "limites."};
inline constexpr Text dayLine{"{0}. gün: {1} – {2} ({3}).", "Day {0}: {1} – {2} ({3}).",
                              "Jour {0} : {1} – {2} ({3})."};
inline constexpr Text noMakeup{"Kaçırılan gün veya planlı aralık için telafi hakkı yok.",
                               "There is no make-up for a missed day or scheduled window.",
                               "Aucun rattrapage pour un jour ou une plage planifiée manqués."};

// Race, ranking and ties.
inline constexpr Text raceHighestTotal{"Kovi sonunda en çok doğrulanmış çalışması olan kazanır.",
                                       "Whoever has the most verified work at the end of the Kovi wins.",
                                       "Celui qui a le plus de travail vérifié à la fin du Kovi gagne."};
inline constexpr Text raceFirstToTarget{"Yarış hedefi: {0} doğrulanmış çalışmaya ilk ulaşan kazanır.",
                                        "Race target: the first to reach {0} of verified work wins.",
                                        "Objectif de la course : le premier à atteindre {0} de travail vérifié "
                                        "gagne."};
inline constexpr Text raceConsistency{
    "Tutarlılık sırası: günlük hedefe en çok günde ulaşan öne geçer.",
    "Consistency ranking: whoever reaches the daily target on the most days ranks ahead.",
    "Classement de régularité : celui qui atteint l’objectif quotidien le plus de jours passe devant."};
inline constexpr Text raceStreak{
    "Seri sırası: günlük hedefe art arda en çok günde ulaşan öne geçer.",
    "Streak ranking: whoever reaches the daily target on the most days in a row ranks ahead.",
    "Classement de série : celui qui atteint l’objectif quotidien le plus de jours d’affilée passe devant."};
inline constexpr Text raceEfficiency{
    "Verimlilik sırası: en az kayıtlı ihlal. Çalışma hızına veya işin kalitesine puan verilmez.",
    "Efficiency ranking: fewest recorded violations. Work speed and the quality of the work earn no points.",
    "Classement d’efficacité : le moins d’infractions enregistrées. La vitesse et la qualité du travail ne "
    "rapportent aucun point."};
inline constexpr Text raceEfficiencyTarget{
    "Verimlilik sırasına girmek için {0} doğrulanmış çalışmaya ulaşılmalı.",
    "To enter the efficiency ranking, {0} of verified work must be reached.",
    "Pour entrer dans le classement d’efficacité, il faut atteindre {0} de travail vérifié."};
inline constexpr Text raceEarliestTarget{
    "İhlal sayısı eşitse hedefe daha erken ulaşma zaman dilimi öne geçer.",
    "When violation counts are equal, the earlier time slot of reaching the target ranks ahead.",
    "À nombre d’infractions égal, la tranche horaire la plus précoce d’atteinte de l’objectif passe devant."};
inline constexpr Text raceTieBucket{
    "Ulaşma zamanları {0} dilimlerle karşılaştırılır; aynı dilimdekiler eşit sayılır.",
    "Reach times are compared in slots of {0}; those in the same slot count as equal.",
    "Les heures d’atteinte sont comparées par tranches de {0} ; celles d’une même tranche sont égales."};
inline constexpr Text raceEligibility{
    "Yarışa katılmak için {0} doğrulanmış çalışma hedefi tamamlanmalı.",
    "To take part in the race, a target of {0} of verified work must be completed.",
    "Pour participer à la course, un objectif de {0} de travail vérifié doit être atteint."};

// Payouts.
inline constexpr Text rankShares{"Sıra payları: {0}.", "Rank shares: {0}.", "Parts par rang : {0}."};
inline constexpr Text rankShare{"{0}. sıraya {1}", "{1} to rank {0}", "{1} au rang {0}"};
inline constexpr Text rankTiesShare{
    "Aynı sıradakiler işgal ettikleri sıra paylarının toplamını eşit paylaşır.",
    "Members tied on a rank share equally the sum of the rank shares they occupy.",
    "Les ex æquo se partagent à parts égales la somme des parts des rangs qu’ils occupent."};
inline constexpr Text rankUndistributed{
    "Uygun katılımcı azsa dağıtılmamış son sıra payları son uygun sıraya eklenir.",
    "If there are fewer eligible participants than ranks, the undistributed last rank shares are added to the last "
    "eligible rank.",
    "S’il y a moins de participants éligibles que de rangs, les parts des derniers rangs non distribuées "
    "s’ajoutent au dernier rang éligible."};
inline constexpr Text winnerTakesAll{
    "Ödül: havuzun tamamı birinciye gider. Eşitlikte birinciler paylaşır.",
    "Reward: the whole pool goes to first place. In a tie, those in first place share it.",
    "Récompense : tout le pot va à la première place. En cas d’égalité, les premiers se le partagent."};
inline constexpr Text equalShares{
    "Hedefi tamamlayanlar ödül havuzunu eşit paylaşır; fazla çalışma payı artırmaz.",
    "Those who complete the target share the reward pool equally; extra work does not increase a share.",
    "Ceux qui atteignent l’objectif se partagent le pot à parts égales ; le travail en plus n’augmente pas la "
    "part."};
inline constexpr Text successByTarget{
    "Başarı sonucu hedefi tamamlamaya bağlıdır; fazla çalışma başka bir başarılı katılımcıyı geriye düşürmez.",
    "Success depends on completing the target; extra work does not push another successful participant back.",
    "La réussite dépend de l’objectif atteint ; le travail en plus ne fait pas reculer un autre participant qui a "
    "réussi."};

// When nobody qualifies: a condition ({0}) and what happens.
inline constexpr Text nobodyEligible{"Yarışa uygun kimse kalmazsa", "If nobody is left eligible for the race",
                                     "Si personne ne reste éligible pour la course"};
inline constexpr Text nobodySuccessful{"Hedefi tamamlayan kimse olmazsa", "If nobody completes the target",
                                       "Si personne n’atteint l’objectif"};
inline constexpr Text fallbackClosest{"{0}: hedefe en yakın sonuç seçilir; eşit sonuçlar paylaşır.",
                                      "{0}: the result closest to the target is chosen; equal results share.",
                                      "{0} : le résultat le plus proche de l’objectif est retenu ; les résultats "
                                      "égaux se partagent."};
inline constexpr Text fallbackRefund{
    "{0}: kalan havuz değerlendirilen katılımcılara eşit olarak iade edilir.",
    "{0}: the remaining pool is refunded equally to the evaluated participants.",
    "{0} : le pot restant est remboursé à parts égales aux participants évalués."};
inline constexpr Text fallbackRollover{"{0}: sonuç, üzerinde anlaşılan sonraki Kovi’e devreder.",
                                       "{0}: the result is carried over to the next agreed Kovi.",
                                       "{0} : le résultat est reporté sur le prochain Kovi convenu."};
inline constexpr Text rolloverAgreement{
    "Devir için aynı grubun sonraki Kovi üzerinde yeniden anlaşması gerekir; otomatik yeni Kovi oluşturulmaz.",
    "A rollover needs the same group to agree again on the next Kovi; no new Kovi is created automatically.",
    "Un report exige que le même groupe se remette d’accord sur le Kovi suivant ; aucun nouveau Kovi n’est créé "
    "automatiquement."};

// Leaving.
inline constexpr Text exitFree{"Bu ücretsiz Kovi’ten ayrılırken kesinti veya iade yapılmaz.",
                               "Leaving this free Kovi involves no deduction and no refund.",
                               "Quitter ce Kovi gratuit n’entraîne ni retenue ni remboursement."};
inline constexpr Text exitPenalty{"Kovi başladıktan sonra ayrılırsan katkının {0} kadarı havuzda kalır.",
                                  "If you leave after the Kovi has started, {0} of your contribution stays in the "
                                  "pool.",
                                  "Si tu pars après le début du Kovi, {0} de ta contribution reste dans le pot."};
inline constexpr Text exitRefund{"Katkının kalan {0} kadarı iade edilir.",
                                 "The remaining {0} of your contribution is refunded.",
                                 "Les {0} restants de ta contribution sont remboursés."};
inline constexpr Text sessionEndIsNotLeaving{
    "Oturumu bitirmek Kovi’ten ayrılmak değildir; üyelikten ayrılma ayrı işlemdir.",
    "Ending a session is not leaving the Kovi; leaving the membership is a separate action.",
    "Terminer une session n’est pas quitter le Kovi ; quitter l’adhésion est une action distincte."};

// Session rules.
inline constexpr Text minimumSession{
    "Bir oturumda {0} altında sayılabilir çalışma varsa o oturumun tamamı sayılmaz.",
    "If a session has less than {0} of countable work, none of that session counts.",
    "Si une session compte moins de {0} de travail comptable, elle ne compte pas du tout."};
inline constexpr Text singleSessionOnly{
    "Tek oturum seçili: günlük, toplam veya planlı aralık hedefi için ayrı oturumlar birleştirilmez.",
    "Single session selected: separate sessions are not combined for a daily, total or scheduled-window target.",
    "Session unique choisie : des sessions séparées ne sont pas combinées pour un objectif quotidien, total ou de "
    "plage planifiée."};
inline constexpr Text restBetweenSessions{
    "Oturumlar arasında en az {0} olmalı; daha erken başlayan oturum sayılmaz.",
    "There must be at least {0} between sessions; a session that starts earlier does not count.",
    "Il faut au moins {0} entre deux sessions ; une session qui commence plus tôt ne compte pas."};
inline constexpr Text flexibleContinuity{
    "Esnek devamlılık: kesinti süresi tek başına oturumu geçersiz yapmaz.",
    "Flexible continuity: an interruption alone does not invalidate a session.",
    "Continuité souple : une interruption à elle seule n’invalide pas une session."};
inline constexpr Text handoffBreaksContinuity{
    "Mac değişikliğinde devamlılık korunmaz; hedef hesabında ayrı oturumlar oluşur.",
    "Continuity is not kept when changing Macs; separate sessions are formed for the target.",
    "La continuité n’est pas conservée en changeant de Mac ; des sessions distinctes sont formées pour "
    "l’objectif."};
inline constexpr Text continueAfterTarget{
    "Hedefi tamamladıktan sonra devam edebilirsin. Ek süre ödül payını değiştirmez ama süre yarışında sıralamayı "
    "etkileyebilir.",
    "You may continue after completing the target. Extra time does not change the reward share but may affect the "
    "ranking in a time race.",
    "Tu peux continuer après avoir atteint l’objectif. Le temps en plus ne change pas la part de récompense mais "
    "peut changer le classement d’une course au temps."};
inline constexpr Text lateJoinFullTarget{
    "Geç katılan tam hedefi tamamlar. Kişisel oturum süresi kendi başlangıcından hesaplanır; Kovi’in kesin bitişi "
    "aşılmaz.",
    "A late joiner completes the full target. Their session time is counted from their own start; the Kovi’s fixed "
    "end is never exceeded.",
    "Qui rejoint en retard atteint l’objectif complet. Sa durée de session compte depuis son propre début ; la fin "
    "fixe du Kovi n’est jamais dépassée."};
inline constexpr Text lateJoinRemainingWindow{
    "Geç katılanın oturumu ortak bitişte sona erer. Kalan zaman azalır; aktif çalışma hedefi ve ödül koşulları "
    "küçülmez.",
    "A late joiner’s session ends at the common end. The time left shrinks; the active work target and the reward "
    "conditions do not.",
    "La session de qui rejoint en retard se termine à la fin commune. Le temps restant diminue ; l’objectif de "
    "travail actif et les conditions de récompense ne diminuent pas."};

// Verification.
inline constexpr Text notCounted{
    "Molalar, uyku, ekran kilidi ve doğrulanamayan süre çalışma sayılmaz.",
    "Breaks, sleep, screen lock and time that cannot be verified do not count as work.",
    "Les pauses, le sommeil, le verrouillage de l’écran et le temps non vérifiable ne comptent pas comme travail."};
inline constexpr Text macVerifies{"Çalışmayı kayıtlı Mac doğrular. iPhone tek başına çalışma süresi üretemez.",
                                  "The registered Mac verifies the work. An iPhone alone cannot produce work time.",
                                  "Le Mac enregistré vérifie le travail. Un iPhone seul ne peut pas produire de "
                                  "temps de travail."};
inline constexpr Text macNotRequired{
    "Mac gerekmiyor seçildi, ancak Mac olmadan doğrulama bu sürümde kullanılamıyor.",
    "Mac not required was selected, but verification without a Mac is unavailable in this version.",
    "« Mac non requis » a été choisi, mais la vérification sans Mac n’est pas disponible dans cette version."};
inline constexpr Text timerOnly{"Yalnız sayaç; güçlü çalışma doğrulaması değildir",
                                "Timer only; not strong work verification",
                                "Minuteur seul ; pas une vérification forte du travail"};
inline constexpr Text permissionLossPauses{"Gerekli izin kaybolursa çalışma sayacı durur.",
                                           "If a required permission is lost, the work timer stops.",
                                           "Si une autorisation requise est perdue, le minuteur de travail "
                                           "s’arrête."};
inline constexpr Text permissionLossUnverified{
    "İzin kaybından sonraki bölüm doğrulanmamış sayılır; kabul edilmedikçe hedefe eklenmez.",
    "The part after a permission loss counts as unverified; it is not added to the target unless accepted.",
    "La partie qui suit une perte d’autorisation compte comme non vérifiée ; elle n’est ajoutée à l’objectif que "
    "si elle est acceptée."};
inline constexpr Text partialSegments{
    "Bu sürümde iki kısmi kayıt seçeneği de yalnız kabul edilmiş parçaları sayar; eksik bölümden süre üretilmez.",
    "In this version both partial-record options count only accepted pieces; no time is produced from a missing "
    "part.",
    "Dans cette version, les deux options d’enregistrement partiel ne comptent que les parties acceptées ; aucun "
    "temps n’est produit à partir d’une partie manquante."};
inline constexpr Text lateRecords{
    "Eksik kayıtlar Kovi bitişinden sonra {0} boyunca yüklenebilir; çözülemeyen süre sayılmaz.",
    "Missing records may be uploaded for {0} after the Kovi ends; time that cannot be resolved does not count.",
    "Les enregistrements manquants peuvent être envoyés pendant {0} après la fin du Kovi ; le temps non résolu ne "
    "compte pas."};
inline constexpr Text noLateRecords{
    "Kovi bitince ek kayıt yükleme süresi yok; çözülemeyen süre sayılmaz.",
    "There is no extra upload time once the Kovi ends; time that cannot be resolved does not count.",
    "Aucun délai d’envoi supplémentaire après la fin du Kovi ; le temps non résolu ne compte pas."};

// Breaks.
inline constexpr Text breakLimits{"Mola sınırları: {0}; ardışık mola kayıtları tek mola sayılır.",
                                  "Break limits: {0}; consecutive break records count as one break.",
                                  "Limites de pause : {0} ; des enregistrements de pause consécutifs comptent comme "
                                  "une seule pause."};
inline constexpr Text breakPerSession{"oturum başına {0}", "{0} per session", "{0} par session"};
inline constexpr Text breakPerDay{"günde {0}", "{0} per day", "{0} par jour"};
inline constexpr Text breakPerBreak{"mola başına {0}", "{0} per break", "{0} par pause"};
inline constexpr Text noBreakLimits{"Mola süresi sınırsız; ardışık mola kayıtları tek mola sayılır.",
                                    "Break time is unlimited; consecutive break records count as one break.",
                                    "Le temps de pause est illimité ; des enregistrements de pause consécutifs "
                                    "comptent comme une seule pause."};
inline constexpr Text overrunInvalidates{
    "Mola sınırı aşılırsa aşımın olduğu oturumun çalışması sayılmaz.",
    "If a break limit is exceeded, the work of the session where it happened does not count.",
    "Si une limite de pause est dépassée, le travail de la session concernée ne compte pas."};
inline constexpr Text overrunWarns{
    "Mola sınırı aşımı kuralı: uyarı; çalışma bu yüzden silinmez. Bu sürümde ayrı uyarı bildirimi yok.",
    "Break limit overrun rule: warning; work is not removed because of it. This version has no separate warning "
    "notification.",
    "Règle de dépassement de pause : avertissement ; le travail n’est pas supprimé pour autant. Cette version n’a "
    "pas de notification d’avertissement distincte."};
inline constexpr Text overrunExtends{
    "Mola sınırı aşılırsa aktif hedef azalmaz; yalnız geçen süre uzar. Sabit bitiş sınırları değişmez.",
    "If a break limit is exceeded, the active target does not shrink; only the elapsed time grows. Fixed end limits "
    "do not change.",
    "Si une limite de pause est dépassée, l’objectif actif ne diminue pas ; seul le temps écoulé s’allonge. Les "
    "limites de fin fixes ne changent pas."};
inline constexpr Text overrunPenalty{
    "Mola sınırı aşılırsa etkilenen oturum başına yarış ihlal sayısına bir eklenir; doğrudan para cezası değildir.",
    "If a break limit is exceeded, one is added to the race violation count per affected session; it is not a "
    "direct money penalty.",
    "Si une limite de pause est dépassée, une infraction de course est ajoutée par session concernée ; ce n’est "
    "pas une pénalité financière directe."};
inline constexpr Text overrunPenaltySeparate{
    "Mola aşımının bu ek ihlali, günlük koruma aşımı eşiğine eklenmez.",
    "This extra break-overrun violation is not added to the daily protection-bypass threshold.",
    "Cette infraction supplémentaire de dépassement de pause ne s’ajoute pas au seuil quotidien de contournement de "
    "la protection."};
inline constexpr Text manualBreaksForbidden{
    "Elle mola izni yok; elle mola içeren oturum sayılmaz. Otomatik molalar bu yasaktan etkilenmez.",
    "Manual breaks are not allowed; a session containing a manual break does not count. Automatic breaks are not "
    "affected by this ban.",
    "Les pauses manuelles ne sont pas permises ; une session contenant une pause manuelle ne compte pas. Les pauses "
    "automatiques ne sont pas concernées par cette interdiction."};

// Blocking and bypass.
inline constexpr Text bypassNeverCounts{"Koruma aşılan süre çalışma sayılmaz.",
                                        "Time spent bypassing protection does not count as work.",
                                        "Le temps passé à contourner la protection ne compte pas comme travail."};
inline constexpr Text bypassInvalidates{
    "Koruma aşımının sonucu: ilgili oturumun tamamı sayılmaz.",
    "Consequence of a protection bypass: the whole session concerned does not count.",
    "Conséquence d’un contournement de la protection : la session concernée ne compte pas du tout."};
inline constexpr Text bypassExcludesTime{
    "Koruma aşımının sonucu: yalnız ilgili süre dışarıda kalır; önceki çalışma bu yüzden silinmez.",
    "Consequence of a protection bypass: only the time concerned is left out; earlier work is not removed because "
    "of it.",
    "Conséquence d’un contournement de la protection : seul le temps concerné est exclu ; le travail précédent "
    "n’est pas supprimé pour autant."};
inline constexpr Text bypassFailsDay{"Bir Kovi gününde {0} ihlale ulaşılırsa o günün çalışması sayılmaz.",
                                     "If {0, plural, one {# violation is} other {# violations are}} reached in one "
                                     "Kovi day, that day’s work does not count.",
                                     "Si {0, plural, one {# infraction est atteinte} other {# infractions sont "
                                     "atteintes}} dans un jour du Kovi, le travail de ce jour ne compte pas."};
inline constexpr Text limitedBypass{"Sınırlı koruma açma: oturum başına {0} kez, her seferinde {1}.",
                                    "Limited protection unlock: {0, plural, one {# time} other {# times}} per "
                                    "session, {1} each time.",
                                    "Déverrouillage limité de la protection : {0} fois par session, {1} à chaque "
                                    "fois."};
inline constexpr Text limitedBypassReturns{
    "Süreli açma bitince mola veya çalışma için seçilen korumalar yeniden uygulanır; acil çıkış hakkı ayrıdır.",
    "When a timed unlock ends, the protections chosen for breaks or work apply again; the emergency exit is "
    "separate.",
    "À la fin d’un déverrouillage temporisé, les protections choisies pour les pauses ou le travail s’appliquent de "
    "nouveau ; la sortie d’urgence est distincte."};
inline constexpr Text emergencyExit{
    "Acil çıkış cihazdaki korumayı bağlantı olmadan da kaldırabilir; sunucuya ulaşmadıysa sonuç kaydı beklemede "
    "kalır.",
    "An emergency exit can lift the protection on the device even without a connection; until it reaches the "
    "server, the result record stays pending.",
    "Une sortie d’urgence peut lever la protection sur l’appareil même sans connexion ; tant qu’elle n’a pas atteint "
    "le serveur, l’enregistrement du résultat reste en attente."};
inline constexpr Text manualEntryForbidden{"Geçmiş çalışma süresi elle eklenemez veya düzeltilemez.",
                                           "Past work time cannot be added or corrected by hand.",
                                           "Le temps de travail passé ne peut pas être ajouté ni corrigé à la main."};
inline constexpr Text manualEntryGroupApproval{
    "Elle çalışma önerisi, Kovi bitmeden diğer tüm aktif üyelerin onayını gerektirir; kimse kendi önerisini "
    "onaylayamaz.",
    "A manual work proposal needs the approval of every other active member before the Kovi ends; nobody approves "
    "their own.",
    "Une proposition de travail manuel nécessite l’approbation de tous les autres membres actifs avant la fin du "
    "Kovi ; personne n’approuve la sienne."};

// Privacy.
inline constexpr Text listsStayOnDevice{
    "Tam uygulama ve site listeleri cihazda kalır; grup üyelerine gösterilmez.",
    "The full app and site lists stay on the device; they are not shown to group members.",
    "Les listes complètes d’applications et de sites restent sur l’appareil ; elles ne sont pas montrées aux "
    "membres du groupe."};
inline constexpr Text nothingRecorded{
    "Kovi tuş içeriğini, yazılan metni, fare konumunu, panoyu, ekran görüntüsünü veya tam tarama geçmişini "
    "kaydetmez.",
    "Kovi does not record keystroke content, typed text, mouse position, the clipboard, screenshots or the full "
    "browsing history.",
    "Kovi n’enregistre ni le contenu des frappes, ni le texte saisi, ni la position de la souris, ni le "
    "presse-papiers, ni les captures d’écran, ni l’historique de navigation complet."};
inline constexpr Text presenceProgressOnly{
    "Grupla yalnız ilerleme paylaşılır; canlı çalışma veya bağlantı durumu paylaşılmaz.",
    "Only progress is shared with the group; live work or connection status is not shared.",
    "Seule la progression est partagée avec le groupe ; l’état de travail en direct ou de connexion ne l’est pas."};
inline constexpr Text presenceActiveStatus{
    "Grupla canlı çalışma/mola durumu paylaşılabilir; eski cihaz durumu aktif çalışma diye gösterilmez.",
    "Live work/break status may be shared with the group; an old device status is never shown as active work.",
    "L’état travail/pause en direct peut être partagé avec le groupe ; un ancien état d’appareil n’est jamais "
    "montré comme travail actif."};
inline constexpr Text presenceHidden{
    "Kovi devam ederken grupla canlı durum veya ilerleme paylaşılmaz.",
    "While the Kovi runs, neither live status nor progress is shared with the group.",
    "Pendant le Kovi, ni l’état en direct ni la progression ne sont partagés avec le groupe."};
inline constexpr Text exactDurationHidden{
    "Tam doğrulanmış süre Kovi devam ederken diğer katılımcılardan gizlenir.",
    "The exact verified time is hidden from the other participants while the Kovi runs.",
    "Le temps vérifié exact est caché aux autres participants pendant le Kovi."};
inline constexpr Text finalTotalsShown{
    "Nihai doğrulanmış toplamlar ve başarı sonuçları, sonuç hesabı için Kovi bitince katılımcılara gösterilir.",
    "Final verified totals and success results are shown to the participants when the Kovi ends, for the result "
    "calculation.",
    "Les totaux vérifiés définitifs et les résultats de réussite sont montrés aux participants à la fin du Kovi, "
    "pour le calcul du résultat."};

// Every text above, for checks that must cover them all.
inline constexpr std::array all{
    &consentBinding,        &dailyTarget,          &requiredSomeDays,        &requiredAllDays,
    &bothConditions,        &dailyCondition,       &totalTarget,             &singleSessionTarget,
    &scheduledTarget,       &sprintTarget,         &sprintBoth,              &windowLine,
    &measureBestDays,       &measureBestDaysAndTotal, &measureTotal,         &measureBestSession,
    &measureWindowsBestSession, &measureWindowsAccumulated, &measureSprint,  &capNoCarry,
    &countingSpan,          &calendarDays,         &anchoredDays,            &timeZone,
    &dayLine,               &noMakeup,             &raceHighestTotal,        &raceFirstToTarget,
    &raceConsistency,       &raceStreak,           &raceEfficiency,          &raceEfficiencyTarget,
    &raceEarliestTarget,    &raceTieBucket,        &raceEligibility,         &rankShares,
    &rankShare,             &rankTiesShare,        &rankUndistributed,       &winnerTakesAll,
    &equalShares,           &successByTarget,      &nobodyEligible,          &nobodySuccessful,
    &fallbackClosest,       &fallbackRefund,       &fallbackRollover,        &rolloverAgreement,
    &exitFree,              &exitPenalty,          &exitRefund,              &sessionEndIsNotLeaving,
    &minimumSession,        &singleSessionOnly,    &restBetweenSessions,     &flexibleContinuity,
    &handoffBreaksContinuity, &continueAfterTarget, &lateJoinFullTarget,     &lateJoinRemainingWindow,
    &notCounted,            &macVerifies,          &macNotRequired,          &timerOnly,
    &permissionLossPauses,  &permissionLossUnverified, &partialSegments,     &lateRecords,
    &noLateRecords,         &breakLimits,          &breakPerSession,         &breakPerDay,
    &breakPerBreak,         &noBreakLimits,        &overrunInvalidates,      &overrunWarns,
    &overrunExtends,        &overrunPenalty,       &overrunPenaltySeparate,  &manualBreaksForbidden,
    &bypassNeverCounts,     &bypassInvalidates,    &bypassExcludesTime,      &bypassFailsDay,
    &limitedBypass,         &limitedBypassReturns, &emergencyExit,           &manualEntryForbidden,
    &manualEntryGroupApproval, &listsStayOnDevice, &nothingRecorded,         &presenceProgressOnly,
    &presenceActiveStatus,  &presenceHidden,       &exactDurationHidden,     &finalTotalsShown,
};

}  // namespace kovi::workingsummary
