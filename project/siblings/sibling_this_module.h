// Which module's rows a stand-in sibling module exports: the build defines
// QT_SIBLING_OF_<module>, and only that module's row macro keeps its rows.
#ifndef QUILTOOL_PROJECT_SIBLINGS_SIBLING_THIS_MODULE_H
#define QUILTOOL_PROJECT_SIBLINGS_SIBLING_THIS_MODULE_H

#if defined(QT_SIBLING_OF_QnHpv)
#define QT_SIBLING_ROW_QnHpv(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_QnHpv(...)
#endif
#if defined(QT_SIBLING_OF_QuilUtil)
#define QT_SIBLING_ROW_QuilUtil(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_QuilUtil(...)
#endif
#if defined(QT_SIBLING_OF_QuilSer)
#define QT_SIBLING_ROW_QuilSer(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_QuilSer(...)
#endif
#if defined(QT_SIBLING_OF_QuilEPJ)
#define QT_SIBLING_ROW_QuilEPJ(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_QuilEPJ(...)
#endif
#if defined(QT_SIBLING_OF_Qne)
#define QT_SIBLING_ROW_Qne(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_Qne(...)
#endif
#if defined(QT_SIBLING_OF_QneUi)
#define QT_SIBLING_ROW_QneUi(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_QneUi(...)
#endif
#if defined(QT_SIBLING_OF_QNCommon)
#define QT_SIBLING_ROW_QNCommon(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_QNCommon(...)
#endif
#if defined(QT_SIBLING_OF_QNCommonUi)
#define QT_SIBLING_ROW_QNCommonUi(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_QNCommonUi(...)
#endif
#if defined(QT_SIBLING_OF_Qnr)
#define QT_SIBLING_ROW_Qnr(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_Qnr(...)
#endif
#if defined(QT_SIBLING_OF_QuilQRP)
#define QT_SIBLING_ROW_QuilQRP(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_QuilQRP(...)
#endif
#if defined(QT_SIBLING_OF_QNHeatEx)
#define QT_SIBLING_ROW_QNHeatEx(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_QNHeatEx(...)
#endif
#if defined(QT_SIBLING_OF_QNUtilities)
#define QT_SIBLING_ROW_QNUtilities(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_QNUtilities(...)
#endif
#if defined(QT_SIBLING_OF_QnSd)
#define QT_SIBLING_ROW_QnSd(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_QnSd(...)
#endif
#if defined(QT_SIBLING_OF_QnSdUi)
#define QT_SIBLING_ROW_QnSdUi(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_QnSdUi(...)
#endif
#if defined(QT_SIBLING_OF_QnCs)
#define QT_SIBLING_ROW_QnCs(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_QnCs(...)
#endif
#if defined(QT_SIBLING_OF_QUILQNPropertiesPalette)
#define QT_SIBLING_ROW_QUILQNPropertiesPalette(...) __VA_ARGS__
#else
#define QT_SIBLING_ROW_QUILQNPropertiesPalette(...)
#endif

#endif
