// The dialogs of a file to send and a folder to receive into: their templates and controls. Macros, as the
// resource compiler reads this too.
#pragma once

#define SendFileTemplate 208
#define ReceiveFileTemplate 209

#define FileDialog_Protocol 243
#define FileDialog_Browse 244

#define SendFile_Path 100
#define ReceiveFile_Folder 245
