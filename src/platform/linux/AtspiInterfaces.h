#pragma once

namespace norvane {

inline constexpr const char* kAtspiAccessible = "org.a11y.atspi.Accessible";
inline constexpr const char* kAtspiApplication = "org.a11y.atspi.Application";
inline constexpr const char* kAtspiComponent = "org.a11y.atspi.Component";
inline constexpr const char* kAtspiAction = "org.a11y.atspi.Action";
inline constexpr const char* kAtspiValue = "org.a11y.atspi.Value";
inline constexpr const char* kAtspiText = "org.a11y.atspi.Text";

// What our objects answer of AT-SPI's interfaces ("AT-SPI2", freedesktop.org), as introspection data.
inline constexpr const char* kAtspiDescription = R"XML(<node>
<interface name="org.a11y.atspi.Accessible">
 <property name="Name" type="s" access="read"/>
 <property name="Description" type="s" access="read"/>
 <property name="Parent" type="(so)" access="read"/>
 <property name="ChildCount" type="i" access="read"/>
 <property name="Locale" type="s" access="read"/>
 <method name="GetChildAtIndex"><arg type="i" direction="in"/><arg type="(so)" direction="out"/></method>
 <method name="GetChildren"><arg type="a(so)" direction="out"/></method>
 <method name="GetIndexInParent"><arg type="i" direction="out"/></method>
 <method name="GetRelationSet"><arg type="a(ua(so))" direction="out"/></method>
 <method name="GetRole"><arg type="u" direction="out"/></method>
 <method name="GetRoleName"><arg type="s" direction="out"/></method>
 <method name="GetLocalizedRoleName"><arg type="s" direction="out"/></method>
 <method name="GetState"><arg type="au" direction="out"/></method>
 <method name="GetAttributes"><arg type="a{ss}" direction="out"/></method>
 <method name="GetApplication"><arg type="(so)" direction="out"/></method>
 <method name="GetInterfaces"><arg type="as" direction="out"/></method>
</interface>
<interface name="org.a11y.atspi.Application">
 <property name="ToolkitName" type="s" access="read"/>
 <property name="Version" type="s" access="read"/>
 <property name="AtspiVersion" type="s" access="read"/>
 <property name="Id" type="i" access="readwrite"/>
 <method name="GetLocale"><arg type="u" direction="in"/><arg type="s" direction="out"/></method>
</interface>
<interface name="org.a11y.atspi.Component">
 <method name="Contains"><arg type="i" direction="in"/><arg type="i" direction="in"/>
  <arg type="u" direction="in"/><arg type="b" direction="out"/></method>
 <method name="GetAccessibleAtPoint"><arg type="i" direction="in"/><arg type="i" direction="in"/>
  <arg type="u" direction="in"/><arg type="(so)" direction="out"/></method>
 <method name="GetExtents"><arg type="u" direction="in"/><arg type="(iiii)" direction="out"/></method>
 <method name="GetPosition"><arg type="u" direction="in"/><arg type="i" direction="out"/>
  <arg type="i" direction="out"/></method>
 <method name="GetSize"><arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetLayer"><arg type="u" direction="out"/></method>
 <method name="GetMDIZOrder"><arg type="n" direction="out"/></method>
 <method name="GrabFocus"><arg type="b" direction="out"/></method>
 <method name="GetAlpha"><arg type="d" direction="out"/></method>
</interface>
<interface name="org.a11y.atspi.Action">
 <property name="NActions" type="i" access="read"/>
 <method name="GetDescription"><arg type="i" direction="in"/><arg type="s" direction="out"/></method>
 <method name="GetName"><arg type="i" direction="in"/><arg type="s" direction="out"/></method>
 <method name="GetLocalizedName"><arg type="i" direction="in"/><arg type="s" direction="out"/></method>
 <method name="GetKeyBinding"><arg type="i" direction="in"/><arg type="s" direction="out"/></method>
 <method name="GetActions"><arg type="a(sss)" direction="out"/></method>
 <method name="DoAction"><arg type="i" direction="in"/><arg type="b" direction="out"/></method>
</interface>
<interface name="org.a11y.atspi.Value">
 <property name="MinimumValue" type="d" access="read"/>
 <property name="MaximumValue" type="d" access="read"/>
 <property name="MinimumIncrement" type="d" access="read"/>
 <property name="CurrentValue" type="d" access="readwrite"/>
 <property name="Text" type="s" access="read"/>
</interface>
<interface name="org.a11y.atspi.Text">
 <property name="CharacterCount" type="i" access="read"/>
 <property name="CaretOffset" type="i" access="read"/>
 <method name="GetText"><arg type="i" direction="in"/><arg type="i" direction="in"/>
  <arg type="s" direction="out"/></method>
 <method name="GetCharacterAtOffset"><arg type="i" direction="in"/><arg type="i" direction="out"/></method>
 <method name="GetStringAtOffset"><arg type="i" direction="in"/><arg type="u" direction="in"/>
  <arg type="s" direction="out"/><arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetTextAtOffset"><arg type="i" direction="in"/><arg type="u" direction="in"/>
  <arg type="s" direction="out"/><arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetTextBeforeOffset"><arg type="i" direction="in"/><arg type="u" direction="in"/>
  <arg type="s" direction="out"/><arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetTextAfterOffset"><arg type="i" direction="in"/><arg type="u" direction="in"/>
  <arg type="s" direction="out"/><arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetNSelections"><arg type="i" direction="out"/></method>
 <method name="SetCaretOffset"><arg type="i" direction="in"/><arg type="b" direction="out"/></method>
 <method name="GetCharacterExtents"><arg type="i" direction="in"/><arg type="u" direction="in"/>
  <arg type="i" direction="out"/><arg type="i" direction="out"/><arg type="i" direction="out"/>
  <arg type="i" direction="out"/></method>
 <method name="GetRangeExtents"><arg type="i" direction="in"/><arg type="i" direction="in"/>
  <arg type="u" direction="in"/><arg type="i" direction="out"/><arg type="i" direction="out"/>
  <arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetOffsetAtPoint"><arg type="i" direction="in"/><arg type="i" direction="in"/>
  <arg type="u" direction="in"/><arg type="i" direction="out"/></method>
 <method name="GetAttributes"><arg type="i" direction="in"/><arg type="a{ss}" direction="out"/>
  <arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetAttributeRun"><arg type="i" direction="in"/><arg type="b" direction="in"/>
  <arg type="a{ss}" direction="out"/><arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetDefaultAttributes"><arg type="a{ss}" direction="out"/></method>
 <method name="GetDefaultAttributeSet"><arg type="a{ss}" direction="out"/></method>
</interface>
</node>)XML";

// The one that lists all objects at once.
inline constexpr const char* kAtspiCacheDescription = R"XML(<node>
<interface name="org.a11y.atspi.Cache">
 <method name="GetItems"><arg type="a((so)(so)(so)iiassusau)" direction="out"/></method>
 <signal name="AddAccessible"><arg type="((so)(so)(so)iiassusau)"/></signal>
 <signal name="RemoveAccessible"><arg type="(so)"/></signal>
</interface>
</node>)XML";

}  // namespace norvane
