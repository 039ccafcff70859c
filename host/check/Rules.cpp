#include "check/Rules.h"

#include "model/ClassNames.h"

namespace {

constexpr ELevel eNote = ELevel::eNote;
constexpr ELevel eWarning = ELevel::eWarning;
constexpr ELevel eError = ELevel::eError;

}  // namespace

const char* NameOf(ELevel level) {
    constexpr const char* kNames[] = {"note", "warning", "error"};
    return kNames[static_cast<int>(level)];
}

const std::vector<TRule>& AllRules() {
    static const std::vector<TRule> kRules = {
        {"D01", eError, "CDATA, another <! or an open comment",
         "At CDATA, at any other <! that is no comment, and at a comment or instruction that is not closed, the "
         "reader stops without a word: classes behind it are missing, and so is the one around it. Write < and & in "
         "texts as &lt; and &amp;."},
        {"D02", eError, "Value of an attribute is not closed",
         "The quote behind the value of an attribute is missing. The value then runs into the next tag, where the "
         "reader refuses the document, or to the end of the document, where it would never stop; kyr refuses such a "
         "document before it reads it. Close the value."},
        {"D03", eError, "Comment where the reader takes none",
         "In front of the root element, the reader wants nothing or at least two blank characters in front of a "
         "comment or an instruction: with one line end behind the XML declaration it takes the comment for something "
         "else and refuses the document. Leave an empty line there, and begin the document with the XML declaration."},
        {"D04", eError, "Reference or < in the value of an attribute",
         "The reader refuses & and < in the value of an attribute, also where they are a reference such as &amp;. "
         "Names, types and numbers need neither; put texts into elements."},
        {"D05", eWarning, "Numeric reference that is no ASCII character",
         "The reader makes one byte of a numeric reference, its number modulo 256. Above 127 that is no UTF-8, and 0 "
         "ends the text. Write the character itself."},
        {"D06", eError, "Encoding is not UTF-8 without a mark",
         "Documents are read as UTF-8, whatever encoding they declare, and a byte order mark in front is refused. "
         "Save the document as UTF-8 without a mark."},
        {"D07", eError, "Attribute stands twice",
         "Names of attributes are the same in upper and lower case, so that the reader refuses NAME and Name in one "
         "tag. Remove one of them."},
        {"D08", eError, "METHOD in a class",
         "The reader does not know methods. It begins a new, empty class of the method's name, which takes the place "
         "of the class that the method stands in. Remove the method."},
        {"D09", eWarning, "Something behind the root element",
         "The reader does not look at what stands behind the root element. Comments may stand there; move the rest "
         "into the root element, or remove it."},
        {"D10", eError, "SCOPE that says something else than it means",
         "An attribute of SCOPE counts when it is there, even with the value false, and a child of SCOPE ends the "
         "declaration of the qualifier, so that its default value is lost. Leave the attribute out, and write SCOPE "
         "as an empty element."},
        {"D11", eError, "Element in a value",
         "An element inside VALUE ends the value early: what stands behind it is lost. Write < in a text as &lt;, and "
         "values of an array as VALUE elements side by side in VALUE.ARRAY."},
        {"D12", eError, "Qualifier of a class behind a property",
         "The qualifiers of a class come first in it. The reader refuses one behind a property. Move it in front of "
         "the first property."},
        {"D13", eError, "Reference to an object by a path",
         "The value of a reference is read from INSTANCENAME or CLASSNAME. With a path around it the document fails. "
         "Leave the path out."},
        {"D14", eError, "Plain document with .gz in its path",
         "The core's reader takes each file for compressed whose path has .gz in it, in the name of a folder too, and "
         "refuses it if it is not. Rename the file or its folder."},
        {"D15", eError, "Document and library do not belong together",
         "The core finds the document of libfoo.pi.so as foo.properties.xml beside it. A document of any other name "
         "is not read, and the library has no classes. Rename the document."},
        {"D16", eWarning, "Document over the size limit",
         "kyr reads documents of plugins up to 8 MiB and 5000 classes. Split the document, and the plugin with it."},
        {"D17", eError, "Document that the reader refuses",
         "The core's reader takes this for no document: a tag, a reference or an element is not as it should be, or "
         "not where it should be. The finding tells what and where. Nothing behind the place is read, so that the "
         "plugin has no classes, or only some."},
        {"D18", eError, "Element where the reader takes none",
         "Each element takes only certain others, in a certain order: in DECLGROUP the QUALIFIER.DECLARATION elements "
         "first and then the VALUE.OBJECT elements, in each of these one CLASS or INSTANCE, in CLASS the qualifiers "
         "and then the properties. The reader refuses the document at any other. Values of NULL have no element: "
         "leave them out."},
        {"D19", eError, "Text where none is read",
         "The reader takes the text of VALUE, KEYVALUE and HOST. It passes over any other without a word, so that a "
         "value without VALUE around it is lost. Put it into a VALUE."},
        {"D20", eWarning, "Document that declares nothing",
         "There is no class in the document that can have instances, so that nobody asks its plugin for anything. "
         "Declare the classes that the plugin reports, each in a VALUE.OBJECT, and not all of them abstract."},
        {"D21", eWarning, "Attribute that is not known",
         "The reader passes over attributes that it does not know, without a word. Most often one is misspelt: with "
         "SUPERCLAS a class has no superclass. Mend the name, or remove the attribute."},
        {"S01", eError, "Class is declared twice",
         "Of two declarations of a class the one that is read first stands, and the other is dropped without an "
         "error. If they are in the documents of two plugins, only the first plugin is asked for the class. Remove "
         "one, or give it a name of its own."},
        {"S02", eError, "Superclass is not known",
         "A class needs its superclass in the base document, in another plugin's document or in front of it in its "
         "own. Otherwise the reader ends there. Mend the name, or move the superclass in front of its subclasses."},
        {"S03", eError, "Class without a key",
         "A class that is not abstract needs at least one property with the qualifier Key, its own or an inherited "
         "one, since instances are told apart by their keys. The reader refuses it. Mark the properties that identify "
         "an instance."},
        {"S04", eError, "Override of a key is no key",
         "A property that overrides another takes nothing over from it, also not the qualifier Key. So the class "
         "loses the key. Repeat the qualifier Key in the overriding property."},
        {"S05", eError, "Override changes the type",
         "A property that overrides another must have its type, and be an array if that is one. The reader refuses "
         "others. Use the inherited type, or another name without Override."},
        {"S06", eError, "Override of nothing",
         "The qualifier Override stands on a property whose name no superclass has. The reader refuses it. Mend the "
         "name, or remove the qualifier."},
        {"S07", eError, "Inherited property is hidden",
         "A class declares a property that it inherits, without the qualifier Override. The reader logs an error and "
         "drops the declaration with all its qualifiers. Add the qualifier Override, or remove the property."},
        {"S08", eError, "Qualifier is not declared",
         "A qualifier is used that neither the base document nor this document declares in front of it. The reader "
         "ends there. Mend the name, or declare the qualifier with QUALIFIER.DECLARATION."},
        {"S09", eWarning, "Qualifier on something that it is not for",
         "The declaration of the qualifier says by SCOPE on what it may stand: on classes, associations, properties "
         "or references. Elsewhere nobody looks for it. Move it to what it tells of."},
        {"S10", eWarning, "Qualifier has another type than declared",
         "The type of a qualifier is that of its use, whatever its declaration says. What reads it expects the "
         "declared type: it passes the qualifier over, or fails on it. Use the declared type."},
        {"S11", eError, "Fixed qualifier is changed",
         "A class inherits a qualifier that is declared with OVERRIDABLE false, such as Association, and gives it "
         "another value. The reader ends there. Remove the qualifier, or choose another superclass."},
        {"S12", eError, "Association with fewer than two references",
         "An association ties instances by at least two properties of reference type, its own or inherited ones. With "
         "fewer it ties nothing. Declare both ends with PROPERTY.REFERENCE."},
        {"S13", eError, "Reference in a class that is no association",
         "A property of reference type is taken only by a class with the qualifier Association. The reader refuses it "
         "elsewhere. Make the class an association, with the qualifier in front of the properties."},
        {"S14", eError, "Referenced class is not known",
         "The class that a PROPERTY.REFERENCE refers to is neither in the base document nor in another plugin's, nor "
         "in front of this class. The reader ends there. Mend the name, or move the class in front."},
        {"S15", eNote, "Association whose references are no keys",
         "A link is told from others by what it ties. If no reference is a key, the keys must be made up, and the "
         "same link may be reported twice. Mark the references as keys."},
        {"S16", eWarning, "Class name without the name of a schema",
         "Names of classes begin with the name of their schema and an underscore, as EX_Pool does. All plugins of a "
         "host share one set of names, and of two classes of one name the second is dropped. Put a name of yours in "
         "front."},
        {"S17", eNote, "Property name that is spelled otherwise",
         "Names of properties are words that begin with a capital, without underscores: FreeSpace. People look for "
         "them so, and kyr finds units and words in names by their capitals."},
        {"S18", eNote, "Override spelled otherwise",
         "Names are found in any case, but shown and saved as they are spelled. A property that is spelled one way in "
         "a class and another way in its superclass makes two names in JSON. Spell it as the superclass does."},
        {"S19", eWarning, "No Description",
         "A class or a property without Description tells its readers nothing: kyr schema prints what the document "
         "says. Say in a sentence what it is, and for a property what its values mean."},
        {"S20", eNote, "Description of the superclass",
         "The class has the Description of its superclass, word for word, so that nobody learns what it is for. Say "
         "what is different about it."},
        {"S22", eWarning, "Key that is an array or a real number",
         "Keys are compared and written into references. Real numbers do not compare well, and arrays have no place "
         "in a reference. Use a text or a whole number."},
        {"S24", eError, "Value is not of its type",
         "A default, the value of a qualifier or a value of an instance is not of the type: text where a number "
         "should be, a number that is too large, anything but true and false for a boolean. The core takes it without "
         "a word and makes another value of it: 0, false, 70000 as 4464. Mend the value or the type."},
        {"S26", eError, "Type is not known",
         "The types are boolean, uint8, sint8, uint16, sint16, uint32, sint32, uint64, sint64, real32, real64, string "
         "and datetime, written so. The reader ends at any other word. An array is a PROPERTY.ARRAY of one of these."},
        {"S27", eError, "Declaration without a name",
         "A class, property or qualifier has no NAME, or one that is no name of CIM: letters, digits and underscores, "
         "no digit first. Nothing can refer to it. Give it a name."},
        {"S28", eError, "Instance that does not fit its class",
         "An instance in the document names a class or a property that is not declared, gives a property another type "
         "than its declaration, or gives a key no value. The reader ends there. Mend the name or the type, or add the "
         "key."},
        {"S29", eWarning, "Two instances of one key",
         "Two instances of a class in the document have the same values in all keys. Both are kept, and whoever looks "
         "for one of them finds the first. Give them keys of their own."},
        {"V01", eError, "Values and ValueMap differ in length",
         "Each entry of ValueMap has its word at the same place in Values. If they differ in length, no word is shown "
         "at all, only numbers. Add the word or the entry that is missing."},
        {"V02", eWarning, "Entries of ValueMap overlap",
         "Of entries that hold the same number the first one counts, and the word of the other is never shown. Mend "
         "the numbers."},
        {"V03", eError, "Entry of ValueMap is no value of the type",
         "An entry of ValueMap is outside the range of the property's type, or no number where the property is one, "
         "so that no value ever matches it. Mend the entry or the type."},
        {"V04", eWarning, "Range in ValueMap that is read otherwise",
         "Of an entry N..M the core reads N alone, as if it were N.. without an end, and behind such an entry each "
         "plain number begins a range that ends in front of the next one. Write single numbers, or the ranges N.. "
         "last."},
        {"V05", eNote, "Words of a type that shows none",
         "The core shows words for booleans and unsigned numbers alone. For signed numbers, Values has no effect on "
         "the display. Use an unsigned type if no value is below 0."},
        {"V06", eWarning, "Empty word",
         "An entry of Values is empty, so that nothing is shown for its number. Give it a word, or leave out the "
         "entry in Values and ValueMap."},
        {"V07", eWarning, "Number without a unit",
         "A number has neither Units nor ValueMap or Values, so that nobody knows what it counts. Give it Units; for "
         "a number that is a name and counts nothing, the unit Identifier."},
        {"V08", eWarning, "Unit is not known",
         "The unit is none that the display scales (Bytes, Bits, Bytes per Second, Bits per Second and Seconds, with "
         "Kilo, Mega and so on in front) and none of those of the CIM schema, so that most likely it is misspelt. "
         "Units are written exactly so, with capitals."},
        {"V09", eWarning, "Unit on something that is no number",
         "Units says what a number counts. On a text, a boolean or a date it has no effect. Declare a number, or "
         "remove Units."},
        {"V10", eNote, "Name says another unit than Units",
         "The property's name ends in a unit, and Units says another one. One of them is wrong, or will be taken for "
         "wrong. Rename the property, or mend Units."},
        {"V11", eWarning, "Display qualifier that does not do what it says",
         "DISPLAYCPUTIME and ABBREVIATEUNITS count when they are there, even with the value false, and DISPLAYCPUTIME "
         "only with Units of Seconds. BASE is 2, 8, 10 or 16. Mend or remove the qualifier."},
        {"V12", eNote, "Changing value is not Volatile",
         "The name says that the value changes while the machine stays the same (Free, Used, Uptime, Current...), and "
         "the qualifier Volatile is missing. Then each kyr diff tells the property as changed, and kyr collect "
         "--stable keeps it. Add Volatile."},
        {"V14", eError, "Key that is Volatile",
         "The key tells which instance it is. If it changes by itself, no instance is ever found again. Choose "
         "another key, or remove Volatile."},
        {"V15", eNote, "Date or time that is a text",
         "A property with Date or Time at the end of its name is a string. A datetime is compared, shown and exported "
         "as a date, whatever form the source has. Use the type datetime."},
        {"V16", eError, "Word that kyr does not know",
         "NEEDS has the words exec, network, rawio and processes, and NullMeans begins with does not apply, not "
         "reported or "
         "another reason of UnavailableValues. A need of another name is never granted, and another reason is none. "
         "Mend the word."},
        {"L01", eWarning, "Library exports symbols of its own",
         "In a host that loads all plugins into one process they share one scope of symbols: of two functions of one "
         "name both plugins call the one that was loaded first. Build with -fvisibility=hidden, make every function "
         "static, or link with a version script that names nothing: { local: *; };"},
        {"L02", eError, "Symbol that nobody provides",
         "The library refers to a symbol that is neither in the libraries that it needs nor in the core, or needs a "
         "library that is not there. Loading it fails, at once or at the first call. Link it with what it needs."},
        {"L03", eError, "Library that registers no plugin",
         "A plugin is known to the core once a load-time constructor of its library has called kyrRegisterPlugin. "
         "This library never refers to it, so that loading it has no effect. Call it."},
        {"L04", eError, "Folder with lib in its name",
         "The core finds the document by dropping the first 'lib' of the library's path. If the folder's name has "
         "these letters, they are dropped there, and the document is looked for in a folder that does not exist. "
         "Rename the folder."},
        {"L05", eWarning, "Copy of a library beside it",
         "Every file with .pi.so in its name is loaded as a plugin, also a backup such as libfoo.pi.so.old. It "
         "registers the plugin a second time. Move it out of the plugin folder."},
        {"L06", eWarning, "Library is less protected than others",
         "An executable stack or text relocations take protection away from the whole process, and a RUNPATH into a "
         "folder of the build lets whoever can write there run code in it. Link without them; paths relative to "
         "$ORIGIN are fine."},
        {"L07", eError, "Library that everybody may write",
         "Whoever can write the library or its folder runs code in the process of each user that collects, the "
         "superuser among them. Take the right away."},
        {"L09", eError, "Library where no host looks for it",
         "A host looks for libraries in the folders of the plugin folder: neither in the plugin folder itself nor "
         "deeper. Move the library, together with its document, into a folder of its own."},
        {"L10", eError, "Library of a plugin with another ending",
         "A host loads files whose name ends in .pi.so. A library with the ending .so is passed over without a word. "
         "Rename it."},
        {"L11", eError, "Library without lib in front",
         "The document of libfoo.pi.so is foo.properties.xml. Of a library whose name does not begin with 'lib' the "
         "core cannot make the document's name, and refuses it. Rename it."},
        {"L12", eError, "File that is no library of this machine",
         "The file has the name of a plugin's library, and is none, is damaged, or is built for another kind of "
         "machine. Build it anew."},
        {"R01", eError, "Class that could not be collected",
         "In a run of the plugin, the class failed or ended half-way: a call was refused, an error was logged, the "
         "plugin crashed, hung or gave up. The finding repeats what kyr collect says. A source that is missing or may "
         "not be read is none."},
        {"R03", eNote, "Class without an instance or a word why",
         "The plugin was asked for the class, gave no instance and logged nothing, and the class's name is no text in "
         "the library. Most often it was forgotten. Of a class that the library names, the machine may have none."},
        {"R04", eWarning, "NULL without a reason",
         "A property has no value, and neither UnavailableValues of the instance nor the qualifier NullMeans of the "
         "property says why. Nobody can tell whether there is none, or whether it could not be read."},
        {"R05", eWarning, "Note that nobody understands",
         "The entries of UnavailableValues are 'property: reason: source' with one of six reasons, those of "
         "ValueSources 'property: source'. An entry of another form, of a property that the class lacks, or with "
         "another reason is passed over."},
        {"R06", eError, "Two instances with the same keys",
         "Instances are told apart by their keys alone. Of two with equal keys references find the first, and "
         "comparisons take one for the other."},
        {"R07", eError, "Reference to nothing",
         "A reference names an instance that was not collected, although its class was: a key is left out, misspelt "
         "or spelled in another case, or has another value. The association ties nothing."},
        {"R08", eNote, "Value that is not in ValueMap",
         "The value is none of those that the property declares, so that no word is shown for it. A number that was "
         "cut to the size of its type looks like this, too."},
        {"R09", eNote, "Text that was not cleaned",
         "The text has control characters, bytes that are not UTF-8, or blanks around it, as firmware and files often "
         "have. Comparisons and look-ups fail on them. Remove or convert them."},
        {"R10", eWarning, "Value that changes between two runs",
         "Two runs, one right after the other, gave different values for a property without the qualifier Volatile, "
         "or different keys. Then each kyr diff tells a change, and kyr collect --stable keeps it."},
        {"R11", eWarning, "Instance that depends on what else is asked for",
         "Two runs reported the instance, and one that was asked for every other class of the plugin, this one among "
         "them, did not. Then kyr show CLASS tells something else than kyr collect. Report each class that is asked "
         "for, whatever else is."},
        {"R15", eNote, "Class that was not granted what it needs",
         "The document says with the qualifier NEEDS that the class needs a right beyond reading, and check grants "
         "none, so that the class was not checked. Collect it with --grant, and look at what it reports."},
        {"R16", eError, "Text that is no value of its property",
         "A text was given for a number or a boolean that it is not. The core takes it for another value without a "
         "word, such as 0. A number that is too large for kyrAddUint16Property is cut by the compiler, which warns of "
         "it."},
        {"R17", eWarning, "Plugin for another version of the interface",
         "The plugin was built for a newer minor number of the plugin interface than this kyr has, so that it may "
         "count on what is not done for it, or it gives no such version. For a newer major number it is refused, "
         "which R01 tells. Build it with the headers of the kyr that is to run it, with KYR_INTERFACE_VERSION in its "
         "kyrPluginInfo."},
        {"R18", eError, "Date that does not exist",
         "The core takes the numbers of kyrSetDateTime as they come, so that month 13 or the 31st of April is stored "
         "and shown. Check what a source says before it is given, and leave out what is no date."},
        {"X01", eWarning, "Suppression without use",
         "A comment kyr-check or a line of kyr-check.allow suppresses nothing: what it excused has been mended or has "
         "moved, or the suppression is misspelt or gives no reason. Remove or mend it."},
    };
    return kRules;
}

const TRule* FindRule(const std::string& id) {
    for (const TRule& rule : AllRules())
        if (IsSameName(rule.id, id)) return &rule;
    return nullptr;
}
