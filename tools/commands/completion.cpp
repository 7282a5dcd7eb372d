// statedb completion: what a shell completes at the Tab key.

#include <iostream>
#include <memory>

#include "commands/commands.h"
#include "completion/model.h"

namespace statecut {

void addCompletionCommand(CLI::App& app, int& status) {
  const auto shell = std::make_shared<std::string>();
  CLI::App* command = app.add_subcommand("completion", "Write the completion script of a shell");
  command->add_option("SHELL", *shell, "Whose script")
      ->required()
      ->type_name("")
      ->check(CLI::IsMember({"bash", "zsh", "fish"}));
  command->footer("Exit status: 0 written, 2 can't be written.");
  command->callback([&app, shell, &status] {
    const completion::Program program = completion::programOf(app);
    std::cout << (*shell == "bash"  ? completion::bashScript(program)
                  : *shell == "zsh" ? completion::zshScript(program)
                                    : completion::fishScript(program));
    status = 0;
  });
}

}  // namespace statecut
