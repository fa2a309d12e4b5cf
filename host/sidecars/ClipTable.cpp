#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <utility>

#include <zelstoryhost/ClipTable.h>
#include <zelstoryhost/Error.h>

#include "Enumerate.h"
#include "LowerCase.h"
#include "files/FileTarget.h"
#include "sidecars/CSV.h"

namespace zelstoryhost {
namespace {

namespace fs = std::filesystem;

// The places of the columns that are used.
struct Columns {
  struct Scene {
    SceneKey mKey;
    std::size_t mIndex;
  };
  std::size_t mClip = 0;
  std::vector<Scene> mScenes;
};

Columns FindColumns(const CSVRow& names, const std::string& table) {
  const zelcore::xml::Position place{static_cast<std::int64_t>(names.mLine), 0};
  static const std::map<std::string, SceneKey> kSceneKeys{{"scene", SceneKey::kNumber},
                                                          {"number", SceneKey::kNumber},
                                                          {"position", SceneKey::kPosition},
                                                          {"id", SceneKey::kID}};
  Columns columns;
  std::map<std::string, std::size_t> seen;
  for (std::size_t i = 0; i < names.mCells.size(); ++i) {
    const std::string name = LowerCase(names.mCells[i]);
    const auto key = kSceneKeys.find(name);
    if (name != "clip" && key == kSceneKeys.end()) continue;
    if (!seen.emplace(name, i).second)
      throw Error(table, place, "two columns have the name " + name);
    if (key != kSceneKeys.end()) columns.mScenes.push_back({key->second, i});
  }
  if (!seen.contains("clip") || columns.mScenes.empty()) {
    throw Error(table, place,
                "the first line must name the columns: clip, and at least one of scene (the number "
                "in the script), position (from 1) and id");
  }
  columns.mClip = seen["clip"];
  return columns;
}

class TableReader {
 public:
  TableReader(const ClipTableSource& source, const SceneFinder& scenes)
      : mSource(source), mScenes(scenes) {}

  ClipTable Read(const std::vector<CSVRow>& rows, const Columns& columns) {
    std::vector<ClipRow> clips;
    for (std::size_t i = 1; i < rows.size(); ++i) {
      if (!IsEmpty(rows[i])) clips.push_back(ReadRow(rows[i], columns));
    }
    RefuseSharedSidecars(clips);
    const bool asksForNumbers =
        std::any_of(columns.mScenes.begin(), columns.mScenes.end(),
                    [](const auto& column) { return column.mKey == SceneKey::kNumber; });
    const bool isAsked = asksForNumbers && !clips.empty();
    return {std::move(clips), isAsked};
  }

 private:
  // Spreadsheets leave such rows below a table.
  static bool IsEmpty(const CSVRow& row) {
    return std::all_of(row.mCells.begin(), row.mCells.end(),
                       [](const std::string& cell) { return cell.empty(); });
  }

  ClipRow ReadRow(const CSVRow& cells, const Columns& columns) {
    ClipRow row;
    row.mLine = cells.mLine;
    const auto cell = [&](std::size_t i) {
      return i < cells.mCells.size() ? cells.mCells[i] : std::string();
    };
    row.mClip = cell(columns.mClip);
    row.mFile = row.mClip.empty() ? "" : (fs::path(mSource.mFolder) / row.mClip).string();
    try {
      if (row.mClip.empty()) throw Error("", "the row names no clip");
      FindClip(row);
      for (const Columns::Scene& column : columns.mScenes) {
        AddScene(row, column.mKey, cell(column.mIndex));
      }
      if (!row.mScene.mScene) throw Error("", "the row names no scene");
    } catch (const Error& error) {
      row.mFault = error;
      row.mScene = {};
    }
    return row;
  }

  void FindClip(ClipRow& row) {
    if (row.mFile == "-") throw Error("", "a table cannot name standard input");
    std::string sidecar = mFinder.Find(row.mFile, mSource.mForm, WhenAbsent::kCreate);
    const fs::path target = TargetOf(sidecar);
    const fs::path folder = FolderOf(target);
    std::error_code error;
    if (!fs::is_directory(folder, error)) {
      throw Error("", "the folder " + folder.string() + " does not exist");
    }
    if (fs::is_directory(target, error)) throw Error("", "is a directory");
    row.mSidecar = std::move(sidecar);
  }

  void AddScene(ClipRow& row, SceneKey key, const std::string& text) const {
    if (text.empty()) return;
    const SelectedScene scene = mScenes.Find(key, text);
    if (row.mScene.mScene && row.mScene.mPosition != scene.mPosition) {
      throw Error("", "the row names two scenes, at the positions " +
                          std::to_string(row.mScene.mPosition) + " and " +
                          std::to_string(scene.mPosition));
    }
    row.mScene = scene;
  }

  // Different names can mean the same file, even before it exists.
  void RefuseSharedSidecars(std::vector<ClipRow>& clips) const {
    std::map<fs::path, std::vector<ClipRow*>> rowsOfSidecar;
    for (ClipRow& row : clips) {
      if (row.mSidecar.empty()) continue;
      std::error_code error;
      const fs::path target = fs::absolute(TargetOf(row.mSidecar));
      rowsOfSidecar[fs::weakly_canonical(target, error)].push_back(&row);
    }
    for (const auto& [sidecar, rows] : rowsOfSidecar) {
      if (rows.size() < 2 || AgreeOnShared(rows)) continue;
      std::vector<std::size_t> lines;
      for (const ClipRow* row : rows) lines.push_back(row->mLine);
      const std::string reason = "several lines name its sidecar: " + Enumerate(lines);
      for (ClipRow* row : rows) {
        if (!row->mFault) row->mFault.emplace("", reason);
      }
    }
  }

  // Picture and sound of one take may share a sidecar if the user says so.
  bool AgreeOnShared(const std::vector<ClipRow*>& rows) const {
    return mSource.mForm == SidecarForm::kStem &&
           std::all_of(rows.begin(), rows.end(), [&](const ClipRow* row) {
             return row->mScene.mPosition == rows[0]->mScene.mPosition;
           });
  }

  const ClipTableSource& mSource;
  const SceneFinder& mScenes;
  SidecarFinder mFinder;
};

}  // namespace

ClipTable ReadClipTable(std::string_view text, const ClipTableSource& source,
                        const SceneFinder& scenes) {
  const std::vector<CSVRow> rows = ReadCSV(text, source.mName);
  if (rows.empty()) throw Error(source.mName, "is empty; its first line must name the columns");
  return TableReader(source, scenes).Read(rows, FindColumns(rows[0], source.mName));
}

}  // namespace zelstoryhost
