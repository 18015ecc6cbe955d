#pragma once

// Every text the user may see, as a message literal: "~", five hex digits of
// the key, a blank, and the German default text. Translate turns a literal
// into the text of the current language; a placeholder ("%1%", "{0}", "%s1",
// "%s2") is filled by the caller afterwards. The literals must stay byte for
// byte as they are: their keys and default texts are what the language
// tables are made against.
//
// Also the class strings every error report and trace line names.

#include <array>
#include <string_view>

namespace pipespec {

namespace msg {

inline constexpr std::string_view Description = "~0001a Beschreibung";
inline constexpr std::string_view Name = "~00077 Name";
inline constexpr std::string_view Insert = "~00161 Einfügen";
inline constexpr std::string_view Function = "~0017a Funktion";
inline constexpr std::string_view Search = "~001a7 Suchen";
inline constexpr std::string_view Ok = "~003a2 OK";
inline constexpr std::string_view Refresh = "~0056e Aktualisieren";
inline constexpr std::string_view RecursiveForPipeClasses = "~010ef Rekursiv bei Rohrklassen";
inline constexpr std::string_view FunctionCode = "~010fd Funktionscode";
inline constexpr std::string_view Component = "~01100 Bauteil";
inline constexpr std::string_view NominalDiameterFrom = "~01102 Nennweite von";
inline constexpr std::string_view NominalDiameterTo = "~01103 Nennweite bis";
inline constexpr std::string_view NavigateOriginal = "~01106 Navigieren - Original";
inline constexpr std::string_view NavigatePipeClass = "~01124 Navigieren - Rohrklasse";
inline constexpr std::string_view StandardPipeClassQuery = "~01125 Standardabfrage für Rohrklassen";
inline constexpr std::string_view QuerySettingsSaved = "~01139 Die Abfrageeinstellungen wurden gespeichert.";
inline constexpr std::string_view QueryContainer = "~0113c Container der Abfrage:";
inline constexpr std::string_view PipeClassNotInProject = "~0114f Rohrklasse befindet sich nicht im aktuellen Projekt.";
inline constexpr std::string_view ActionCancelled = "~01174 Die Aktion wird abgebrochen.";
inline constexpr std::string_view PipeClass = "~01310 Rohrklasse";
inline constexpr std::string_view PipeClasses = "~014f0 Rohrklassen";
inline constexpr std::string_view SearchAtOnce = "~01724 Sofort suchen";
inline constexpr std::string_view NominalDiameter = "~01b74 Nennweite";
inline constexpr std::string_view ErrorInPipeClassObject = "~02b1e Fehler in Rohrklassenobjekt";
inline constexpr std::string_view Cancel = "~02d9a Cancel";
inline constexpr std::string_view Selector = "~03168 Selector";
inline constexpr std::string_view ElementWithRootExists =
    "~0316f Mindestens ein Rohrklassenelement mit ausgewähltem Stammobject existiert bereits.";
inline constexpr std::string_view AddAnyway = "~03170 Wollen Sie das Objekt trozdem hinzufügen?";
inline constexpr std::string_view New = "~03483 New";
inline constexpr std::string_view Delete = "~03491 Delete";
inline constexpr std::string_view Invalid = "~035b2 invalid";
inline constexpr std::string_view Disabled = "~035b3 disabled";
inline constexpr std::string_view CatrefDisabled = "~035b4 Catref disabled";
inline constexpr std::string_view ChooseNextSelector = "~035b5 Choose selector for next step";
inline constexpr std::string_view SpecComponent = "~035b6 Spec component";
inline constexpr std::string_view SelectorChainAmbiguous =
    "~035b7 Selectors chain after selector %s1 with question %s2 is ambiguous.";
inline constexpr std::string_view DefineQuestionForNewSelector = "~035b8 Define question for new selector";
inline constexpr std::string_view Question = "~035b9 Question";
inline constexpr std::string_view SpecificationDragDrop = "~035ba Specification (Drag&&Drop)";
inline constexpr std::string_view RangeFor = "~035bb Range for ";  // the range is appended after the blank
inline constexpr std::string_view StandardPipeClassQueryPdms = "~035bd Standardabfrage für Rohrklassen (PDMS)";
inline constexpr std::string_view SelectorType = "~035be Selector type";
inline constexpr std::string_view DefaultAnswer = "~035bf Default answer";
inline constexpr std::string_view NominalDiameterRange = "~03a29 Nennweiten-Bereich";
inline constexpr std::string_view GenericType = "~03eb0 Generic type";
inline constexpr std::string_view PipePartType = "~03eb1 Rohrteiltyp";
inline constexpr std::string_view PipePart = "~03eb2 Rohrteil";
inline constexpr std::string_view TubrixDesigner = "~04565 Tubrix Designer";
inline constexpr std::string_view AddComponentToPipeSpec = "~04596 TubrixDesigner: Add component to pipe spec";
inline constexpr std::string_view HidePidMappingColumn = "~04598 Spalte R&I-Mapping ausblenden";
inline constexpr std::string_view ShowPidMappingColumn = "~04599 Spalte R&I-Mapping einblenden";
inline constexpr std::string_view PidFunctionCode = "~0459a P&ID Function code";
inline constexpr std::string_view Answer = "~0459b Answer";
inline constexpr std::string_view MaxAnswer = "~0459c MaxAnswer";
inline constexpr std::string_view TAnswer = "~0459d TAnswer";
inline constexpr std::string_view ObjectNotAllowed = "~046a4 Objekt darf nicht als PipeSpec-Element verwendet werden";
inline constexpr std::string_view ShowOnlyNotAllowedElements = "~046a5 Nur nicht zulässige PipeSpec-Elemente anzeigen";
inline constexpr std::string_view ShowAllElements = "~046a6 Alle PipeSpec-Elemente anzeigen";
inline constexpr std::string_view ShowFilteredObjectQuery = "~046a7 Gefilterte Objektabfrage anzeigen";
inline constexpr std::string_view NewPipeClassElement = "~049a6 Neue Rohrklassenelement";
inline constexpr std::string_view SpecChapterNotFound = "~049a7 Spec-Chapter %1% not found";
inline constexpr std::string_view SolveTemplatePipeSpec = "~05156 Solve template pipe spec";
inline constexpr std::string_view SolveElement = "~05157 Solve element";
inline constexpr std::string_view InitiateSelectors = "~056b7 Selektoren initiieren";
inline constexpr std::string_view NoPredefinedSelectors = "~056b8 Keine vordefinierten Selectoren unter %1% gefunden";
inline constexpr std::string_view PipeClassAttributeNotFound =
    "~056b9 Attribut %1% der Rohrklasse nicht gefunden oder LinkObject nicht gesetzt";
inline constexpr std::string_view ErrorInInitiateSelectors = "~056ba Fehler in 'Selektoren initiieren'";
inline constexpr std::string_view ReloadPipeClass = "~056bb Laden Sie bitte die Rohrklasse in TubrixDesign erneut";
inline constexpr std::string_view WithoutTrace = "~057a8 ohne Ablaufverfolgung";
inline constexpr std::string_view WithTrace = "~057a9 mit Ablaufverfolgung";
inline constexpr std::string_view BranchComponents = "~05a56 Abzweigbauteile";
inline constexpr std::string_view ShowPpfValues = "~05f51 Show PPF values";
inline constexpr std::string_view ShowUnresolvedNominalDiameterRange =
    "~05f52 Nicht aufgelöstes Nennweiten-Bereich anzeigen";
inline constexpr std::string_view ResetBranchItems = "~05f53 Reset branch items to default";
inline constexpr std::string_view ChapterCardNotFound = "~0656d Kapitelkarte {0} nicht gefunden";

// Every literal above, so that tests can check keys and language tables.
inline constexpr std::array all{
    Description,
    Name,
    Insert,
    Function,
    Search,
    Ok,
    Refresh,
    RecursiveForPipeClasses,
    FunctionCode,
    Component,
    NominalDiameterFrom,
    NominalDiameterTo,
    NavigateOriginal,
    NavigatePipeClass,
    StandardPipeClassQuery,
    QuerySettingsSaved,
    QueryContainer,
    PipeClassNotInProject,
    ActionCancelled,
    PipeClass,
    PipeClasses,
    SearchAtOnce,
    NominalDiameter,
    ErrorInPipeClassObject,
    Cancel,
    Selector,
    ElementWithRootExists,
    AddAnyway,
    New,
    Delete,
    Invalid,
    Disabled,
    CatrefDisabled,
    ChooseNextSelector,
    SpecComponent,
    SelectorChainAmbiguous,
    DefineQuestionForNewSelector,
    Question,
    SpecificationDragDrop,
    RangeFor,
    StandardPipeClassQueryPdms,
    SelectorType,
    DefaultAnswer,
    NominalDiameterRange,
    GenericType,
    PipePartType,
    PipePart,
    TubrixDesigner,
    AddComponentToPipeSpec,
    HidePidMappingColumn,
    ShowPidMappingColumn,
    PidFunctionCode,
    Answer,
    MaxAnswer,
    TAnswer,
    ObjectNotAllowed,
    ShowOnlyNotAllowedElements,
    ShowAllElements,
    ShowFilteredObjectQuery,
    NewPipeClassElement,
    SpecChapterNotFound,
    SolveTemplatePipeSpec,
    SolveElement,
    InitiateSelectors,
    NoPredefinedSelectors,
    PipeClassAttributeNotFound,
    ErrorInInitiateSelectors,
    ReloadPipeClass,
    WithoutTrace,
    WithTrace,
    BranchComponents,
    ShowPpfValues,
    ShowUnresolvedNominalDiameterRange,
    ResetBranchItems,
    ChapterCardNotFound,
};

// The designer window's own texts.
namespace window {

inline constexpr std::string_view MenuFile = "~7d001 &Datei";
inline constexpr std::string_view OpenDatabase = "~7d002 Datenbank ö&ffnen…";
inline constexpr std::string_view OpenJsonProject = "~7d003 &JSON-Projekt öffnen…";
inline constexpr std::string_view Save = "~7d004 &Speichern";
inline constexpr std::string_view SaveAs = "~7d005 Speichern &unter…";
inline constexpr std::string_view RecentFiles = "~7d006 &Zuletzt geöffnet";
inline constexpr std::string_view Quit = "~7d007 &Beenden";
inline constexpr std::string_view MenuEdit = "~7d008 &Bearbeiten";
inline constexpr std::string_view Undo = "~7d009 &Rückgängig";
inline constexpr std::string_view Redo = "~7d00a &Wiederholen";
inline constexpr std::string_view Delete = "~7d00b &Löschen";
inline constexpr std::string_view Properties = "~7d00c &Eigenschaften";
inline constexpr std::string_view MenuView = "~7d00d &Ansicht";
inline constexpr std::string_view MenuLanguage = "~7d00e &Sprache";
inline constexpr std::string_view ProjectExplorer = "~7d010 Projekt-Explorer";
inline constexpr std::string_view PropertiesDock = "~7d011 Eigenschaften";
inline constexpr std::string_view Messages = "~7d012 Meldungen";
inline constexpr std::string_view FilterPrompt = "~7d013 Filtern…";
inline constexpr std::string_view ComponentListPage = "~7d014 Komponentenliste";
inline constexpr std::string_view SelectorsPage = "~7d015 Selektoren";
inline constexpr std::string_view RangesPage = "~7d016 Nennweitenbereiche";
inline constexpr std::string_view ComponentSearchPage = "~7d017 Komponentensuche";
inline constexpr std::string_view ComponentListPurpose =
    "~7d018 Die Elemente der Rohrklasse als Liste mit Funktionscode, Nennweitenbereich und Stammobjekt. Katalogobjekte "
    "aus dem Projekt-Explorer werden hier abgelegt und zu Elementen.";
inline constexpr std::string_view SelectorsPurpose =
    "~7d019 Die Selektorketten der Rohrklasse: ein Reiter je Gruppe von Elementen, eine Spalte je Frage, daneben die "
    "Eigenschaften des gewählten Selektors.";
inline constexpr std::string_view RangesPurpose = "~7d01a Die Nennweitenbereiche der Komponenten, ein Reiter je "
                                                  "generischem Typ, mit den bevorzugten Nennweiten des Typs.";
inline constexpr std::string_view ComponentSearchPurpose =
    "~7d01b Sucht die Komponenten der Rohrklasse nach Funktionscode und Nennweite.";
inline constexpr std::string_view PageComesLater =
    "~7d01c Diese Seite folgt in einer späteren Ausbaustufe des Designers.";
inline constexpr std::string_view ChoosePipeClass = "~7d01d Wählen Sie im Projekt-Explorer eine Rohrklasse.";
inline constexpr std::string_view PipeClassIs = "~7d01e Rohrklasse: %1%";
inline constexpr std::string_view SaveChangesTo = "~7d01f Änderungen an %1% speichern?";
inline constexpr std::string_view Attribute = "~7d020 Attribut";
inline constexpr std::string_view Value = "~7d021 Wert";
inline constexpr std::string_view FullName = "~7d023 Vollständiger Name";
inline constexpr std::string_view AllKinds = "~7d024 Alle";
inline constexpr std::string_view KindError = "~7d025 Fehler";
inline constexpr std::string_view KindTrace = "~7d026 Ablauf";
inline constexpr std::string_view KindLog = "~7d027 Protokoll";
inline constexpr std::string_view Time = "~7d028 Zeit";
inline constexpr std::string_view Kind = "~7d029 Art";
inline constexpr std::string_view Clear = "~7d02a Leeren";
inline constexpr std::string_view Text = "~7d02b Text";
inline constexpr std::string_view SavedTo = "~7d02c Gespeichert: %1%";
inline constexpr std::string_view DeleteObjects = "~7d02d %1% Objekte löschen?";
inline constexpr std::string_view FileChangedElsewhere =
    "~7d02e Eine andere Sitzung hat die Datei gespeichert, seit sie gelesen wurde.";
inline constexpr std::string_view Reload = "~7d030 Neu laden";
inline constexpr std::string_view DatabaseFiles = "~7d031 Datenbanken (*.pspec)";
inline constexpr std::string_view JsonProjectFiles = "~7d032 JSON-Projekte (*.json)";
inline constexpr std::string_view NoObject = "~7d033 Kein Objekt gewählt";
inline constexpr std::string_view DesignerTitle = "~7d034 Rohrklassen-Designer";
inline constexpr std::string_view ProjectIs = "~7d035 Projekt: %1%";
inline constexpr std::string_view Toolbar = "~7d036 Werkzeugleiste";
inline constexpr std::string_view Opened = "~7d037 Geöffnet: %1%";
inline constexpr std::string_view ChapterMissing =
    "~7d038 Diese Seite braucht an der Rohrklasse das Kapitel %1% mit mindestens einem Wert. Legen Sie es an der "
    "Rohrklasse an und wählen Sie sie erneut.";
inline constexpr std::string_view ChapterRefused = "~7d039 Diese Seite kann die Rohrklasse nicht zeigen (Kapitel %1%).";
inline constexpr std::string_view Copy = "~7d03a &Kopieren";
inline constexpr std::string_view Paste = "~7d03b &Einfügen";
// The wizard beside the component list.
inline constexpr std::string_view WizardValues = "~7d060 Werte zum Auflösen";
inline constexpr std::string_view WizardFunctionCode = "~7d061 Funktionscode";
inline constexpr std::string_view WizardGenericType = "~7d062 Generischer Typ";
inline constexpr std::string_view WizardElementRange = "~7d063 Elementbereich";
inline constexpr std::string_view WizardNominalPressure = "~7d064 Nenndruck";
inline constexpr std::string_view WizardCatalogueObject = "~7d065 Katalogobjekt";
inline constexpr std::string_view WizardNotSet = "~7d066 (nicht gesetzt)";
inline constexpr std::string_view WizardSearch = "~7d067 Name oder Beschreibung enthält…";
inline constexpr std::string_view WizardName = "~7d068 Name";
inline constexpr std::string_view WizardDescription = "~7d069 Beschreibung";
inline constexpr std::string_view WizardNominalDiameter = "~7d06a Nennweite";
inline constexpr std::string_view WizardPressureDiffers =
    "~7d06b Nenndruck PN %s1 passt nicht zu PN %s2 der Rohrklasse";
inline constexpr std::string_view WizardDiameterNotOffered =
    "~7d06c Nennweite DN %1% wird von der Rohrklasse nicht angeboten";
inline constexpr std::string_view WizardStructureElement =
    "~7d06d Strukturelement: erst das Auflösen macht Komponenten daraus";
inline constexpr std::string_view AddingElements = "~7d040 Elemente werden hinzugefügt";
inline constexpr std::string_view CopyList = "~7d041 Liste kopieren";
inline constexpr std::string_view ExportList = "~7d042 Liste exportieren…";
inline constexpr std::string_view CsvFiles = "~7d043 CSV-Dateien (*.csv)";
inline constexpr std::string_view CannotWrite = "~7d044 Die Datei %1% kann nicht geschrieben werden.";

inline constexpr std::array all{
    MenuFile,
    OpenDatabase,
    OpenJsonProject,
    Save,
    SaveAs,
    RecentFiles,
    Quit,
    MenuEdit,
    Undo,
    Redo,
    Delete,
    Properties,
    MenuView,
    MenuLanguage,
    ProjectExplorer,
    PropertiesDock,
    Messages,
    FilterPrompt,
    ComponentListPage,
    SelectorsPage,
    RangesPage,
    ComponentSearchPage,
    ComponentListPurpose,
    SelectorsPurpose,
    RangesPurpose,
    ComponentSearchPurpose,
    PageComesLater,
    ChoosePipeClass,
    PipeClassIs,
    SaveChangesTo,
    Attribute,
    Value,
    FullName,
    AllKinds,
    KindError,
    KindTrace,
    KindLog,
    Time,
    Kind,
    Clear,
    Text,
    SavedTo,
    DeleteObjects,
    FileChangedElsewhere,
    Reload,
    DatabaseFiles,
    JsonProjectFiles,
    NoObject,
    DesignerTitle,
    ProjectIs,
    Toolbar,
    Opened,
    ChapterMissing,
    ChapterRefused,
    Copy,
    Paste,
    WizardValues,
    WizardFunctionCode,
    WizardGenericType,
    WizardElementRange,
    WizardNominalPressure,
    WizardCatalogueObject,
    WizardNotSet,
    WizardSearch,
    WizardName,
    WizardDescription,
    WizardNominalDiameter,
    WizardPressureDiffers,
    WizardDiameterNotOffered,
    WizardStructureElement,
    AddingElements,
    CopyList,
    ExportList,
    CsvFiles,
    CannotWrite,
};

}  // namespace window

}  // namespace msg

namespace cls {

inline constexpr std::string_view PipeSpecComp = "QuorlPipeSpecComp.PipeSpecComp";
inline constexpr std::string_view PipeCompSearch = "QuorlPipeSpecComp.PipeCompSearch";
inline constexpr std::string_view AddToPipeClass = "QuorlPipeSpecComp.AddToPipeClass";
inline constexpr std::string_view PipeSpecSelector = "QuorlPipeSpecComp.PipeSpecSelector";
inline constexpr std::string_view PipeSpecNDRange = "QuorlPipeSpecComp.PipeSpecNDRange";
inline constexpr std::string_view NDRangeOverView = "QuorlPipeSpecComp.NDRangeOverView";
inline constexpr std::string_view SelectorProp = "QuorlPipeSpecComp.SelectorProp";
inline constexpr std::string_view FrmPCOMRange = "QuorlPipeSpecComp.FrmPCOMRange";
inline constexpr std::string_view frmNewSelector = "QuorlPipeSpecComp.frmNewSelector";
inline constexpr std::string_view frmChooseSelector = "QuorlPipeSpecComp.frmChooseSelector";

}  // namespace cls

}  // namespace pipespec
