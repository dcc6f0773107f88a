// `kovi invite`: finding an invite code in pasted text.
#include <iostream>
#include <memory>
#include <string>

#include "KoviKit/wallet/V6InviteCode.h"
#include "tools/kovi/Commands.h"

namespace kovi::tool {

void addInviteCommands(CLI::App& app) {
  CLI::App* invite = app.add_subcommand("invite", "Invite codes");
  invite->require_subcommand(1);
  auto text = std::make_shared<std::string>();
  CLI::App* find = invite->add_subcommand(
      "find",
      "Find the invite code in TEXT (a code, a message or a link) and print it in its one\n"
      "written form, KOVI-XXXX-XXXX (exit 0). A code glued to a letter, digit, %, _ or - is\n"
      "not taken. Without a code, print the app's \"not recognised\" message (exit 1).");
  find->add_option("TEXT", *text, "The pasted text")->required();
  find->callback([text] {
    if (const auto code = V6InviteCode::find(*text)) {
      std::cout << code->written() << '\n';
      return;
    }
    std::cout << V6InviteError{std::string(inviteErrorCode::codeUnrecognized)}.message() << '\n';
    exitStatus() = 1;
  });
}

}  // namespace kovi::tool
