#pragma once

namespace InkoraKit {

/// Keys of the options of `JSON::rawString`, with the value expected under each; a value that is
/// missing or of another kind counts as the one in brackets.
enum class writtingOptionsKeys {
    jsonSerialization,  ///< `JSONSerialization::WritingOptions` [pretty-printed].
    castNilToNSNull,    ///< A truth value [false]: write absent values as null.
    maxObjextDepth,     ///< An integer [10]: how deep values may be nested where nil is cast.
    encoding            ///< `StringEncoding` [UTF-8].
};

}  // namespace InkoraKit
