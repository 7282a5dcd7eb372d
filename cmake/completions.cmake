# What the shells complete: statedb's scripts are written by itself, statecut's by hand.
set(scripts "")
foreach(shell IN ITEMS bash zsh fish)
  set(script ${PROJECT_BINARY_DIR}/completions/statedb.${shell})
  add_custom_command(OUTPUT ${script}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/completions
    COMMAND statedb completion ${shell} > ${script} VERBATIM)
  list(APPEND scripts ${script})
endforeach()
add_custom_target(completions ALL DEPENDS ${scripts})

set(by_hand ${PROJECT_SOURCE_DIR}/completions)
set(made ${PROJECT_BINARY_DIR}/completions)
install(FILES ${by_hand}/statecut.bash DESTINATION ${bash_dir} RENAME statecut COMPONENT programs)
install(FILES ${made}/statedb.bash DESTINATION ${bash_dir} RENAME statedb COMPONENT programs)
install(FILES ${by_hand}/_statecut DESTINATION ${STATECUT_ZSH_DIR} COMPONENT programs)
install(FILES ${made}/statedb.zsh DESTINATION ${STATECUT_ZSH_DIR} RENAME _statedb COMPONENT programs)
install(FILES ${by_hand}/statecut.fish ${made}/statedb.fish DESTINATION ${fish_dir}
  COMPONENT programs)
