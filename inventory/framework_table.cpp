#include "inventory/framework_table.h"

#include <array>

namespace brindle {
namespace {

using Names = std::string_view;

constexpr std::span<const Names> kAny{};

constexpr auto kVite = std::to_array<Names>({"vite"});
constexpr auto kBuilds = std::to_array<Names>({"build", "optimize", "--version", "--help", "-v"});
constexpr auto kSvelteKit = std::to_array<Names>({"svelte-kit"});
constexpr auto kRemix = std::to_array<Names>({"remix", "remix-serve", "remix-dev"});
constexpr auto kRemixRefuses = std::to_array<Names>({"build", "vite:build", "init", "routes"});
constexpr auto kNext = std::to_array<Names>({"next"});
constexpr auto kNextNeeds = std::to_array<Names>({"dev", "start"});
constexpr auto kNextServer = std::to_array<Names>({"next-server"});
constexpr auto kNuxt = std::to_array<Names>({"nuxt", "nuxi"});
constexpr auto kDevStartPreview = std::to_array<Names>({"dev", "start", "preview"});
constexpr auto kReactScripts = std::to_array<Names>({"react-scripts"});
constexpr auto kStart = std::to_array<Names>({"start"});
constexpr auto kDocusaurus = std::to_array<Names>({"docusaurus"});
constexpr auto kStartServe = std::to_array<Names>({"start", "serve", "server", "s"});
constexpr auto kAstro = std::to_array<Names>({"astro"});
constexpr auto kAngular = std::to_array<Names>({"ng"});
constexpr auto kServe = std::to_array<Names>({"serve", "s", "dev"});
constexpr auto kGatsby = std::to_array<Names>({"gatsby"});
constexpr auto kGatsbyNeeds = std::to_array<Names>({"develop", "serve"});
constexpr auto kVueCli = std::to_array<Names>({"vue-cli-service"});
constexpr auto kParcel = std::to_array<Names>({"parcel"});
constexpr auto kParcelRefuses = std::to_array<Names>({"build", "--version", "--help"});
constexpr auto kExpo = std::to_array<Names>({"expo"});
constexpr auto kHugo = std::to_array<Names>({"hugo"});
constexpr auto kServer = std::to_array<Names>({"server", "serve"});
constexpr auto kJekyll = std::to_array<Names>({"jekyll"});
constexpr auto kStorybook = std::to_array<Names>({"storybook", "sb"});
constexpr auto kDev = std::to_array<Names>({"dev"});
constexpr auto kStartStorybook = std::to_array<Names>({"start-storybook"});
constexpr auto kWrangler = std::to_array<Names>({"wrangler"});
constexpr auto kRails = std::to_array<Names>({"rails"});
constexpr auto kRailsNeeds = std::to_array<Names>({"server", "s"});
constexpr auto kPuma = std::to_array<Names>({"puma", "puma:"});
constexpr auto kDjango = std::to_array<Names>({"manage", "manage.py", "django-admin"});
constexpr auto kRunserver = std::to_array<Names>({"runserver", "runserver_plus"});
constexpr auto kUvicorn = std::to_array<Names>({"uvicorn"});
constexpr auto kGunicorn = std::to_array<Names>({"gunicorn", "gunicorn:"});
constexpr auto kFlask = std::to_array<Names>({"flask"});
constexpr auto kRun = std::to_array<Names>({"run"});
constexpr auto kArtisan = std::to_array<Names>({"artisan"});
constexpr auto kPhp = std::to_array<Names>({"php"});
constexpr auto kPhpServer = std::to_array<Names>({"-S"});
constexpr auto kAir = std::to_array<Names>({"air"});
constexpr auto kCargoWatch = std::to_array<Names>({"cargo-watch"});
constexpr auto kJavaBuilds = std::to_array<Names>({"mvn", "mvnw", "gradle", "gradlew", "java"});
constexpr auto kSpringNeeds = std::to_array<Names>({"spring-boot:run", "bootRun"});
constexpr auto kStreamlit = std::to_array<Names>({"streamlit"});
constexpr auto kJupyter =
    std::to_array<Names>({"jupyter-lab", "jupyter-notebook", "jupyter-server", "jupyterlab", "notebook"});
constexpr auto kJupyterCommand = std::to_array<Names>({"jupyter"});
constexpr auto kJupyterNeeds = std::to_array<Names>({"lab", "notebook", "server"});
constexpr auto kCaddy = std::to_array<Names>({"caddy"});
constexpr auto kCaddyNeeds = std::to_array<Names>({"run", "start", "file-server", "reverse-proxy"});
constexpr auto kHttpServer = std::to_array<Names>({"http.server"});
constexpr auto kWebpack = std::to_array<Names>({"webpack-dev-server", "webpack"});
constexpr auto kServeOnly = std::to_array<Names>({"serve", "server", "s"});
constexpr auto kNodemon = std::to_array<Names>({"nodemon"});
constexpr auto kTsx = std::to_array<Names>({"tsx"});
constexpr auto kWatch = std::to_array<Names>({"watch"});
constexpr auto kStaticServers = std::to_array<Names>({"http-server", "live-server", "browser-sync"});

constexpr auto kFrameworks = std::to_array<FrameworkRow>({
    {"Vite", kVite, kAny, kBuilds},
    {"SvelteKit", kSvelteKit, kDev, kAny},
    {"Remix", kRemix, kAny, kRemixRefuses},
    {"Next.js", kNext, kNextNeeds, kAny},
    {"Next.js", kNextServer, kAny, kAny},
    {"Nuxt", kNuxt, kDevStartPreview, kAny},
    {"Create React App", kReactScripts, kStart, kAny},
    {"Docusaurus", kDocusaurus, kStartServe, kAny},
    {"Astro", kAstro, kDevStartPreview, kAny},
    {"Angular", kAngular, kServe, kAny},
    {"Gatsby", kGatsby, kGatsbyNeeds, kAny},
    {"Vue CLI", kVueCli, kServe, kAny},
    {"Parcel", kParcel, kAny, kParcelRefuses},
    {"Expo", kExpo, kStart, kAny},
    {"Hugo", kHugo, kServer, kAny},
    {"Jekyll", kJekyll, kServe, kAny},
    {"Storybook", kStorybook, kDev, kAny},
    {"Storybook", kStartStorybook, kAny, kAny},
    {"Wrangler", kWrangler, kDev, kAny},
    {"Rails", kRails, kRailsNeeds, kAny},
    {"Puma", kPuma, kAny, kAny},
    {"Django", kDjango, kRunserver, kAny},
    {"Uvicorn", kUvicorn, kAny, kAny},
    {"Gunicorn", kGunicorn, kAny, kAny},
    {"Flask", kFlask, kRun, kAny},
    {"Laravel", kArtisan, kServeOnly, kAny},
    {"PHP", kPhp, kPhpServer, kAny},
    {"air", kAir, kAny, kAny},
    {"cargo-watch", kCargoWatch, kAny, kAny},
    {"Spring Boot", kJavaBuilds, kSpringNeeds, kAny},
    {"Streamlit", kStreamlit, kRun, kAny},
    {"Jupyter", kJupyter, kAny, kAny},
    {"Jupyter", kJupyterCommand, kJupyterNeeds, kAny},
    {"Caddy", kCaddy, kCaddyNeeds, kAny},
    {"http.server", kHttpServer, kAny, kAny},
    {"webpack", kWebpack, kServeOnly, kAny},
    {"nodemon", kNodemon, kAny, kAny},
    {"tsx", kTsx, kWatch, kAny},
    {"static server", kStaticServers, kAny, kAny},
});

}  // namespace

std::span<const FrameworkRow> frameworkTable() { return kFrameworks; }

}  // namespace brindle
