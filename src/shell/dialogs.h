#pragma once
// The two dialogs every part of the program shares: the error dialog and the prompt
// shown before an automatic or persistent connection starts. Both are modal, made when
// first shown and hidden after each answer.

// Routes the program's messages (platform/message.h) to these dialogs.
void install_shared_dialogs();
