// The status dialog's templates, its animation, and their items. Macros, as the resource compiler reads this
// too.
#pragma once

#define StatusTemplate 1      // the one that is opened
#define StatusTemplateMoved 2 // the same items at other places
#define StatusTemplateWide 3  // with the folder, the rate and what to do at the end
#define StatusAnimation 203

// Templates 1 and 2
#define Item_BytesDone 101
#define Item_FileSize 102
#define Item_Status 103
#define Item_Elapsed 104
#define Item_BlockSize 105
#define Item_Animation 236
#define Item_Progress 237
#define Item_Details 238

// Template 3
#define Item_CloseAtEnd 281
#define Item_Complete 287
#define Item_FileName 288 // to Item_Rate: emptied at the start
#define Item_TimeLeft 289
#define Item_Folder 290
#define Item_Rate 291
#define Item_OpenFolder 292
#define Item_Open 293
#define Item_Direction 294
#define Item_Place 295
