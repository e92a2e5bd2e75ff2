#include "ui/ScenePainter.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "ui/Backdrop.h"
#include "ui/SceneDiff.h"

namespace tessaspaces {
namespace {

/// A region of more rectangles is drawn as one: each costs a pass over all tiles.
constexpr int mostPieces = 6;
constexpr double carriedOpacity = 0.96;
/// The content of a zoomed tile is drawn at most so much larger than on the panel.
constexpr double finestContent = 2;
/// Less than this is not worth drawing it anew.
constexpr double leastFiner = 1.5;

/// Draws in device pixels while it lives.
class InPixels {
 public:
  InPixels(QPainter& painter, double scale) : painter_(painter) {
    painter.save();
    painter.scale(1 / scale, 1 / scale);
  }
  ~InPixels() { painter_.restore(); }
  InPixels(const InPixels&) = delete;
  InPixels& operator=(const InPixels&) = delete;

 private:
  QPainter& painter_;
};

/// How much larger than on the panel a tile can be drawn before its windows' pictures have no more to show.
double finerContent(const GridScene::Tile& tile, Size bounds, double scale) {
  double finer = 1;
  for (const auto& window : tile.windows) {
    if (window.picture && !window.rect.isEmpty()) {
      finer = std::max(finer, window.picture->width / (window.rect.width * scale));
    }
  }
  finer = std::min({finer, finestContent, bounds.width / tile.content.width});
  return finer < leastFiner ? 1 : finer;
}

}  // namespace

struct ScenePainter::State {
  /// The picture of what a tile contains, and what of it is out of date.
  struct Content {
    QImage image;
    QRect dirty;
  };

  PaintKit kit;
  GridScene scene;
  bool any = false;
  QSize size;  // of the panel, in pixels
  Backdrop backdrop;
  std::vector<Content> contents;
  /// What the contents take, until they are drawn.
  std::vector<PictureRequest> requests;

  QRegion set(const GridScene& next, double scale, const Theme& theme);
  void paint(QPainter& painter, const QRect& clip);
  const QImage& content(std::size_t index);
  void keepOnlyNeeded();
  void makePictures();
};

QRegion ScenePainter::State::set(const GridScene& next, double scale, const Theme& theme) {
  const QRect everything(0, 0, static_cast<int>(std::ceil(next.bounds.width)),
                         static_cast<int>(std::ceil(next.bounds.height)));
  const bool sameKit = any && kit.pixels.scale == scale && kit.theme == theme;
  if (!sameKit) {
    auto pictures = std::move(kit.pictures);
    kit = PaintKit(theme, scale);
    kit.pictures = std::move(pictures);
  }
  auto changes = sameKit ? changesBetween(scene, next, kit) : SceneChanges{true, {}, {}};
  scene = next;
  any = true;
  size = kit.pixels.rect({0, 0, next.bounds.width, next.bounds.height}).size();
  contents.resize(scene.tiles.size());
  for (std::size_t i = 0; i < contents.size(); ++i) {
    const QRect at = kit.pixels.rect(scene.tiles[i].content);
    auto& content = contents[i];
    if (changes.all || content.image.size() != at.size()) {
      content.dirty = QRect(QPoint(), at.size());
    } else {
      content.dirty |= changes.contents[i].translated(-at.topLeft());
    }
  }
  keepOnlyNeeded();
  if (changes.all) return everything;
  QRegion points;
  for (const QRect& rect : changes.region) {
    const Rect part{rect.x() / scale, rect.y() / scale, rect.width() / scale, rect.height() / scale};
    const int left = static_cast<int>(std::floor(part.minX()));
    const int top = static_cast<int>(std::floor(part.minY()));
    points += QRect(left, top, static_cast<int>(std::ceil(part.maxX())) - left,
                    static_cast<int>(std::ceil(part.maxY())) - top);
  }
  return points & everything;
}

void ScenePainter::State::keepOnlyNeeded() {
  requests.clear();
  const TilePainter tiles(kit);
  for (const auto& tile : scene.tiles) tiles.collect(tile, requests);
  if (scene.carried) WindowPainter(kit).collectCarried(scene.carried->window, requests);
  kit.pictures.keepOnly(requests);
}

void ScenePainter::State::makePictures() {
  kit.pictures.makeAll(requests);
  requests.clear();
}

const QImage& ScenePainter::State::content(std::size_t index) {
  auto& content = contents[index];
  const auto& tile = scene.tiles[index];
  const QSize wanted = kit.pixels.rect(tile.content).size();
  if (content.image.size() != wanted) {
    content.image = wanted.isEmpty() ? QImage() : QImage(wanted, QImage::Format_ARGB32_Premultiplied);
    content.dirty = QRect(QPoint(), wanted);
  }
  if (!content.dirty.isEmpty() && !content.image.isNull()) {
    TilePainter(kit).paintContent(content.image, tile, scene.exploded, content.dirty);
  }
  content.dirty = QRect();
  return content.image;
}

void ScenePainter::State::paint(QPainter& painter, const QRect& clip) {
  painter.setClipRect(clip);
  TilePainter tiles(kit);
  QRegion uncovered(clip);
  for (const auto& tile : scene.tiles) uncovered -= tiles.opaqueRect(tile);
  const QImage& behind = backdrop.image(backdropOf(scene), size, kit.theme);
  for (const QRect& rect : uncovered) painter.drawImage(rect.topLeft(), behind, rect);

  std::vector<std::size_t> touched;
  for (std::size_t i = 0; i < scene.tiles.size(); ++i) {
    if (tiles.bounds(scene.tiles[i]).intersects(clip)) touched.push_back(i);
  }
  for (const auto i : touched) tiles.paintShadow(painter, scene.tiles[i]);
  for (const auto i : touched) {
    const QRect at = tiles.contentRect(scene.tiles[i]);
    if (at.intersects(clip))
      ReadyPicture(content(i), kit.tileCorner(scene.tiles[i].content)).draw(painter, at.topLeft());
  }
  for (const auto i : touched) tiles.paintRings(painter, scene.tiles[i]);
  if (scene.plus && tiles.bounds(*scene.plus).intersects(clip)) tiles.paintPlus(painter, *scene.plus);
  for (const auto i : touched) tiles.paintBadge(painter, scene.tiles[i]);

  const HeaderPainter header(kit);
  if (header.bounds(scene).intersects(clip) || header.hintRect(scene).intersects(clip)) header.paint(painter, scene);
  if (scene.carried) {
    const auto& window = scene.carried->window;
    WindowPainter windows(kit);
    if (windows.carriedBounds(window.rect).intersects(clip)) {
      windows.paintCarried(painter, window, window.rect, carriedOpacity);
    }
  }
}

ScenePainter::ScenePainter() : state_(std::make_unique<State>()) {}

ScenePainter::~ScenePainter() = default;

QRegion ScenePainter::setScene(const GridScene& scene, double scale, const Theme& theme) {
  return state_->set(scene, scale, theme);
}

const GridScene& ScenePainter::scene() const {
  return state_->scene;
}

void ScenePainter::paint(QPainter& painter, const QRegion& region) {
  if (!state_->any) return;
  state_->makePictures();
  const InPixels inPixels(painter, state_->kit.pixels.scale);
  QRegion pixels;
  for (const QRect& rect : region) pixels += state_->kit.pixels.covering(rect);
  pixels &= QRect(QPoint(), state_->size);
  if (pixels.rectCount() > mostPieces) pixels = pixels.boundingRect();
  for (const QRect& rect : pixels) state_->paint(painter, rect);
}

QImage ScenePainter::render() {
  QImage image(state_->size, QImage::Format_RGB32);
  if (image.isNull()) return image;
  image.setDevicePixelRatio(state_->kit.pixels.scale);
  QPainter painter(&image);
  const auto& bounds = state_->scene.bounds;
  paint(painter, QRect(0, 0, static_cast<int>(std::ceil(bounds.width)), static_cast<int>(std::ceil(bounds.height))));
  return image;
}

QImage ScenePainter::renderContent(const Rect& content) {
  const auto& tiles = state_->scene.tiles;
  const auto found =
      std::find_if(tiles.begin(), tiles.end(), [&](const auto& tile) { return tile.content == content; });
  if (found == tiles.end() || content.isEmpty()) return {};
  GridScene::Tile tile = *found;
  for (auto& window : tile.windows) {
    if (window.look != GridScene::Window::Look::lifted) window.look = GridScene::Window::Look::plain;
  }
  const double scale = state_->kit.pixels.scale;
  const double finer = finerContent(*found, state_->scene.bounds, scale);
  const auto drawn = [&](PaintKit& kit) {
    const QRect at = kit.pixels.rect(tile.content);
    QImage image(at.size(), QImage::Format_RGB32);
    if (image.isNull()) return image;
    QPainter painter(&image);
    painter.translate(-at.topLeft());
    TilePainter(kit).paintDesktop(painter, tile);
    return image;
  };
  if (finer == 1) return drawn(state_->kit);
  PaintKit kit(state_->kit.theme, scale * finer);
  return drawn(kit);
}

QRectF ScenePainter::carriedBounds(const Rect& rect) const {
  const QRect at = WindowPainter(state_->kit).carriedBounds(rect);
  const double scale = state_->kit.pixels.scale;
  return {at.x() / scale, at.y() / scale, at.width() / scale, at.height() / scale};
}

void ScenePainter::paintCarried(QPainter& painter, const GridScene::Window& window, const Rect& rect, double opacity) {
  const InPixels inPixels(painter, state_->kit.pixels.scale);
  WindowPainter(state_->kit).paintCarried(painter, window, rect, opacity);
}

}  // namespace tessaspaces
