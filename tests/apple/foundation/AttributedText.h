#pragma once

@interface NSAttributedString (Attributes)
/// Of the whole text, which has one set of them.
- (id)attributeNamed:(NSString*)name;
@end
